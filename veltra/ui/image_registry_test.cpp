// SPDX-License-Identifier: MIT
#include "veltra/ui/image_registry.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

TEST(NamedImages, ComeFromTheHostThenFromFilesThenFromTheFramework) {
    ScriptedPort port;
    port.files = {"/images/knob.png", "/images/knob@2x.png"};
    std::vector<float> drawnAt;
    const auto drawn = std::make_shared<RecordedImage>(4, 4, 1.0F);
    const auto own = std::make_shared<RecordedImage>(5, 5, 1.0F);
    registerDefaultImage("knob", [&](float scale) {
        drawnAt.push_back(scale);
        return drawn;
    });
    EXPECT_EQ(findImage("knob", 1.5F), drawn);
    EXPECT_EQ(findImage("knob", 1.5F), drawn);
    EXPECT_THAT(drawnAt, ElementsAre(1.5F)) << "kept";
    setImageFolder("/images");
    const std::pair<float, float> scales[] = {
        {1.0F, 1.0F}, {1.25F, 2.0F}, {2.0F, 2.0F}, {3.0F, 2.0F}};
    for (const auto& [wanted, found] : scales)
        EXPECT_EQ(findImage("knob", wanted)->scale(), found) << wanted;
    registerImage("knob", [&](float) { return own; });
    registerImage(7, [&](float) { return own; });
    EXPECT_EQ(findImage("knob"), own);
    EXPECT_EQ(findImage(7), own);
    EXPECT_EQ(findImage("7"), nullptr);
    EXPECT_EQ(findImage("knob", 0.0F), nullptr);
    registerImage("knob", [](float) { return nullptr; });  // has none after all
    EXPECT_EQ(findImage("knob")->scale(), 1.0F);
    registerImage("knob", nullptr);
    registerImage(7, nullptr);
    setImageFolder({});
    EXPECT_EQ(findImage("knob"), drawn);
    registerDefaultImage("knob", nullptr);
    EXPECT_EQ(findImage("knob"), nullptr);
}

}  // namespace
}  // namespace veltra::testing
