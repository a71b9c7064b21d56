// SPDX-License-Identifier: MIT
#include "veltra/ui/bundle_image.h"

#include "veltra/platform/resources.h"
#include "veltra/platform/testing/temporary_folder.h"
#include "veltra/ui/image_registry.h"
#include "veltra/ui/testing/scripted_port.h"

#include <fstream>

namespace veltra::testing {
namespace {

TEST(BundleImages, PreferTheirOwnFormAndWhatTheToolkitReads) {
    ScriptedPort port;
    port.files.emplace();
    const TemporaryFolder folder;
    setResourceFolder(folder / "");
    const auto load = [] { return qk_loadQKoreBundleImage("knob"); };
    const auto own = std::make_shared<RecordedImage>(5, 5, 1.0F);
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(qk_loadQKoreBundleImage(""), nullptr);
    const char* const names[] = {"knob.tiff", "knob.png", "knob_pro.tiff", "knob_pro.png"};
    for (const char* name : names)
        std::ofstream(folder / name) << name;
    EXPECT_EQ(load(), nullptr);  // the toolkit reads none of them
    for (const char* name : names) {
        port.files = {folder / name};
        EXPECT_NE(load(), nullptr) << name;
        registerImage("knob", [&own](float) { return own; });
        const bool isOtherFormFirst = std::string(name).starts_with("knob_pro");
        EXPECT_EQ(load() != own, isOtherFormFirst) << name;
        registerImage("knob", nullptr);
    }
    registerImage("knob_pro", [&own](float) { return own; });
    EXPECT_EQ(load(), own);
    registerImage("knob_pro", nullptr);
    setResourceFolder({});
    EXPECT_EQ(load(), nullptr);
}

}  // namespace
}  // namespace veltra::testing
