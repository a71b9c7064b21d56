// SPDX-License-Identifier: MIT
#include "veltra/platform/application_facts.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/bundle_information.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <sys/stat.h>

namespace veltra {
namespace {

struct HandedOver {
    explicit HandedOver(PropertyValue::Dictionary all) { setBundleInformation(std::move(all)); }
    ~HandedOver() { setBundleInformation(std::nullopt); }
};

TEST(ApplicationVersion, NeedsWhatStandsBeforeIt) {
    using Case = std::array<const char*, 4>;
    for (const auto& [shortVersion, version, build, expected] :
         {Case{"1.0", "12", "C3", "1.0(12) C3"}, Case{"1.0", "12", "", "1.0(12)"},
          Case{"1.0", "", "C3", "1.0"}, Case{"", "12", "C3", "?.??"}}) {
        const HandedOver bundle({{"CFBundleShortVersionString", shortVersion},
                                 {"CFBundleVersion", version},
                                 {"ProductBuildVersion", build}});
        EXPECT_EQ(applicationVersion(), expected);
        EXPECT_EQ(applicationName(), Process::current().programName());
    }
    const HandedOver numbers({{"CFBundleShortVersionString", 2.5},
                              {"CFBundleVersion", 12},
                              {"ProductBuildVersion", true}});
    EXPECT_EQ(applicationVersion(), "2.5(12)");
    EXPECT_TRUE(setBundleInformationText("CFBundleName", "Mixer"));
    EXPECT_EQ(applicationName() + applicationVersion(), "Mixer2.5(12)");
    setBundleInformation(std::nullopt);
    EXPECT_TRUE(setBundleInformationText("CFBundleName", "Alone"));
    EXPECT_EQ(applicationName() + applicationVersion(), "Alone?.??");
}

// The file beside the program of these tests, for as long as the test runs.
TEST(ApplicationVersion, ComesFromAFileWithItsOwnDigits) {
    const std::string path = executableFolder() + "/Info.json";
    std::filesystem::remove(path);
    const std::pair<const char*, const char*> cases[] = {
        {R"({"CFBundleShortVersionString": 1.10, "CFBundleVersion": 12})", "1.10(12)"},
        {R"({"CFBundleShortVersionString": 1e2, "CFBundleVersion": -0.0})", "1e2(-0.0)"},
        {R"({"CFBundleShortVersionString": {"$real": "nan"}})", "?.??"},
        {R"({"CFBundleShortVersionString": "1", )", "?.??"},
        {R"(["1.0"])", "?.??"},
    };
    for (const auto& [text, expected] : cases) {
        testing::putText(path, text);
        setBundleInformation(std::nullopt);
        EXPECT_EQ(applicationVersion(), expected) << text;
    }
    std::filesystem::remove(path);
    EXPECT_EQ(applicationVersion(), "?.??");  // read once
    setBundleInformation(std::nullopt);
}

TEST(Program, ThatWasRemovedWhileItRunsKeepsItsPath) {
    namespace fs = std::filesystem;
    constexpr const char* kToldPath = "VELTRA_TEST_OWN_PATH";
    if (const char* const path = environmentVariable(kToldPath)) {
        EXPECT_EQ(platformExecutablePath(), path);
        fs::remove(path);
        EXPECT_EQ(platformExecutablePath(), path);
        EXPECT_EQ(executableFolder(), fs::path(path).parent_path());
        return;
    }
    const testing::TemporaryFolder folder;
    const fs::path copy = fs::canonical(folder.path) / "copy";
    fs::copy_file("/proc/self/exe", copy);
    setEnvironment(kToldPath, copy.c_str());
    // NOLINTNEXTLINE(concurrency-mt-unsafe,cert-env33-c): one thread, a command of our own
    EXPECT_EQ(std::system((copy.string() + " --gtest_filter=Program.* >&2").c_str()), 0);
    setEnvironment(kToldPath, nullptr);
}

TEST(Resources, AreFoundInTheHostsFolderAndNeverOutsideOfIt) {
    const testing::TemporaryFolder folder;
    for (const char* name : {"knob.png", "plain", "in/knob.tiff"})
        testing::putText(folder / name, name);
    setResourceFolder(folder / "in");
    EXPECT_EQ(pathOfResource("knob", "tiff"), folder / "in/knob.tiff");
    EXPECT_EQ(pathOfResource("knob", "png"), "");
    setResourceFolder(folder / "");
    EXPECT_EQ(pathOfResource("in/knob", "tiff"), folder / "in/knob.tiff");
    EXPECT_EQ(pathOfResource("plain", ""), folder / "plain");
    for (const std::string& name : {std::string("../knob"), std::string("in/../knob"),
                                    std::string(), folder / "knob", std::string("knob\0", 5)})
        EXPECT_EQ(pathOfResourceIn(folder / "in", name, "png"), "") << name;
    EXPECT_EQ(pathOfResource("in", ""), "");  // a folder
    EXPECT_EQ(textOfFile(folder / "plain", 5), "plain");
    ::mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_FALSE(textOfFile(folder / "plain", 4) || textOfFile(folder / "in", 9) ||
                 textOfFile(folder / "pipe", 9));
    setResourceFolder({});
    EXPECT_EQ(pathOfResource("plain", ""), "");
}

}  // namespace
}  // namespace veltra
