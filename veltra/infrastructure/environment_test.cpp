// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/environment.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/application_object.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/detail/kernel_release.h"
#include "veltra/infrastructure/object.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/bundle_information.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/testing/fake_system_queries.h"
#include "veltra/platform/testing/temporary_folder.h"

namespace veltra {
namespace {

// The text of a string object, which is released.
std::string taken(const VLString* string) {
    const std::string text = textOf(string).value_or("null");
    VLStringRelease(string);
    return text;
}

// A string object for as long as an expression lasts.
struct Text {
    explicit Text(std::string_view text) : string(createString(text)) {}
    ~Text() { VLStringRelease(string); }
    const VLString* string;
};

TEST(Environment, KernelReleasesCountAsWrittenAndAreReadOnce) {
    const struct {
        const char* release;
        int newer;  // how many of the four are true
    } kCases[] = {{"9.8.0", 3}, {"6.99", 0},    {"7", 1},           {"8.0", 2},
                  {"10.0", 4},  {"", 0},        {"v10", 0},         {"6.1-amd", 0},
                  {"-9", 0},    {"00010.2", 4}, {"99999999999", 4}, {"9x", 3}};
    for (const auto& one : kCases) {
        testing::FakeSystemQueries queries;
        queries.setText(SystemKey::KernelRelease, one.release);
        detail::forgetKernelMajorRelease();
        for (int round = 0; round < 2; ++round) {
            int newer = 0;
            for (const auto isOrNewer :
                 {isPantherOrNewer, isTigerOrNewer, isLeopardOrNewer, isSnowLeopardOrNewer})
                EXPECT_EQ(isOrNewer(), newer++ < one.newer) << one.release;
            EXPECT_EQ(queries.asked, 1);
            queries.setText(SystemKey::KernelRelease, "99");
        }
    }
    const testing::FakeSystemQueries silent;
    detail::forgetKernelMajorRelease();
    EXPECT_FALSE(isPantherOrNewer() || isPantherOrNewer());
    EXPECT_EQ(silent.asked, 1);
    detail::forgetKernelMajorRelease();
}

TEST(Environment, StringObjectsSayWhatTheTextsSay) {
    EXPECT_EQ(taken(QKOSVersion()) + taken(QKApplicationName()),
              systemVersion() + applicationName());
    EXPECT_FALSE(QKSetApplicationInformation(nullptr, "x") ||
                 QKSetApplicationInformation("x", nullptr));
    EXPECT_TRUE(QKSetApplicationInformation("CFBundleVersion", "12"));
    EXPECT_EQ(taken(QKApplicationVersion()), "?.??");
    EXPECT_TRUE(QKSetApplicationInformation("CFBundleShortVersionString", "1.0"));
    EXPECT_EQ(taken(QKApplicationVersion()), "1.0(12)");
    setBundleInformation(std::nullopt);
}

TEST(Environment, BundlesAreFoldersAndNothingOutsideOfThemIsFound) {
    const testing::TemporaryFolder folder;
    for (const char* name : {"knob.png", "knob_pro.png", "knob.tiff", "plain"})
        testing::putText(folder / name);
    std::filesystem::create_directories(folder / "in/conf.d");
    QKBundle* const bundle = QKCreateBundleAtPath(Text(folder / "in").string);
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(taken(QKBundlePath(bundle)), folder / "in");
    testing::putText(folder / "in/a.txt");
    using namespace std::string_view_literals;
    const auto resource = [bundle](std::string_view name, std::string_view type) {
        return taken(QKBundlePathOfResource(bundle, Text(name).string, Text(type).string));
    };
    EXPECT_EQ(resource("a", "txt"), folder / "in/a.txt");
    EXPECT_EQ(resource("a.txt", ""), folder / "in/a.txt");
    EXPECT_EQ(taken(QKBundlePathOfResource(bundle, Text("a.txt").string, nullptr)),
              folder / "in/a.txt");
    EXPECT_EQ(
        resource("../plain", "") + resource("conf", "d/../../plain") + resource("a", "txt\0.png"sv),
        "nullnullnull");
    EXPECT_EQ(taken(QKBundlePathOfResource(nullptr, Text("a").string, nullptr)) +
                  taken(QKBundlePathOfResource(bundle, nullptr, nullptr)) +
                  taken(QKBundlePath(nullptr)),
              "nullnullnull");
    QKReleaseBundle(bundle);
    QKReleaseBundle(nullptr);
    for (const std::string& path :
         {folder / "plain", folder / "none", (folder / "in") + std::string(1, 0)})
        EXPECT_EQ(QKCreateBundleAtPath(Text(path).string), nullptr);

    for (const char* name : {"", ".", "..", "../lib", "a/b", "no such folder"})
        EXPECT_EQ(QKCreateFrameworkBundleFromName(Text(name).string), nullptr) << name;
    EXPECT_EQ(QKCreateFrameworkBundleFromName(nullptr), nullptr);
    std::string present;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/lib"))
        if (entry.is_directory()) present = entry.path().filename();
    QKBundle* const framework = QKCreateFrameworkBundleFromName(Text(present).string);
    ASSERT_NE(framework, nullptr);
    EXPECT_TRUE(taken(QKBundlePath(framework)).ends_with("/" + present));
    QKReleaseBundle(framework);

    setResourceFolder(folder / "");
    const auto image = [](const char* name) {
        return taken(qk_pathOfQKoreBundleImage(Text(name).string));
    };
    EXPECT_EQ(image("knob"), folder / "knob_pro.png");  // before knob.tiff
    std::filesystem::remove(folder / "knob_pro.png");
    EXPECT_EQ(image("knob"), folder / "knob.tiff");
    EXPECT_EQ(image("plain") + image("") + taken(qk_pathOfQKoreBundleImage(nullptr)),
              "nullnullnull");
    setResourceFolder({});
}

struct Studio : Object {
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
};
struct GreatStudio : Studio {
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
};
constinit PlainClass Studio::s_class("NSProApplication", &Object::s_class, makeObject<Studio>);
constinit PlainClass GreatStudio::s_class("GreatStudio", &Studio::s_class, makeObject<GreatStudio>);

TEST(Environment, TheProApplicationIsFoundByTheNameOfItsClass) {
    EXPECT_FALSE(isRunningAsProApp());
    Object* const studio = GreatStudio::s_class.alloc();
    setApplicationObject(studio);
    EXPECT_FALSE(isRunningAsProApp());  // nobody knows the class yet
    const ClassEntry entry(Studio::s_class);
    EXPECT_TRUE(isRunningAsProApp());
    setApplicationObject(nullptr);
    EXPECT_FALSE(isRunningAsProApp());
    studio->release();
}

}  // namespace
}  // namespace veltra
