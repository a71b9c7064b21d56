// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/environment.h"

#include "veltra/infrastructure/application_object.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/detail/kernel_release.h"
#include "veltra/infrastructure/object.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/bundle_information.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/testing/fake_system_queries.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <fstream>

#include <gtest/gtest.h>

namespace veltra {
namespace {

// The text of a string object, which is released.
std::string taken(const VLString* string) {
    if (string == nullptr) return "null";
    std::string text(VLStringCopyUtf8(string, nullptr, 0), '\0');
    VLStringCopyUtf8(string, text.data(), text.size() + 1);
    VLStringRelease(string);
    return text;
}

// A string object for as long as an expression lasts.
struct Text {
    explicit Text(std::string_view text)
        : string(VLStringCreateWithUtf8(text.data(), text.size())) {}
    ~Text() { VLStringRelease(string); }
    const VLString* string;
};

TEST(Environment, KernelReleasesCountAsWrittenAndAreReadOnce) {
    const struct {
        const char* release;
        int newer;  // how many of the four are true
    } kCases[] = {
        {"9.8.0", 3}, {"6.99", 0},    {"7", 1},  {"8.0", 2},     {"10.0", 4},        {"", 0},
        {"v10", 0},   {"6.1-amd", 0}, {"-9", 0}, {"00010.2", 4}, {"99999999999", 4}, {"9x", 3},
    };
    for (const auto& one : kCases) {
        testing::FakeSystemQueries queries;
        queries.setText(SystemKey::KernelRelease, one.release);
        detail::forgetKernelMajorRelease();
        for (int round = 0; round < 2; ++round) {
            const bool answers[] = {isPantherOrNewer(), isTigerOrNewer(), isLeopardOrNewer(),
                                    isSnowLeopardOrNewer()};
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(answers[i], i < one.newer) << one.release;
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
    EXPECT_EQ(taken(QKOSVersion()), systemVersion());
    EXPECT_EQ(taken(QKApplicationName()), applicationName());
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
        std::ofstream(folder / name) << name;
    std::filesystem::create_directories(folder / "in/conf.d");
    QKBundle* const bundle = QKCreateBundleAtPath(Text(folder / "in").string);
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(taken(QKBundlePath(bundle)), folder / "in");
    std::ofstream(folder / "in/a.txt") << 1;
    const auto resource = [bundle](std::string_view name, std::optional<std::string> type) {
        const Text text(type.value_or(""));
        return taken(
            QKBundlePathOfResource(bundle, Text(name).string, type ? text.string : nullptr));
    };
    EXPECT_EQ(resource("a", "txt"), folder / "in/a.txt");
    EXPECT_EQ(resource("a.txt", std::nullopt), folder / "in/a.txt");
    EXPECT_EQ(resource("a.txt", ""), folder / "in/a.txt");
    EXPECT_EQ(resource("../plain", std::nullopt), "null");
    EXPECT_EQ(resource("conf", "d/../../plain"), "null");
    EXPECT_EQ(resource("a", std::string("txt\0.png", 8)), "null");
    EXPECT_EQ(taken(QKBundlePathOfResource(nullptr, Text("a").string, nullptr)), "null");
    EXPECT_EQ(taken(QKBundlePathOfResource(bundle, nullptr, nullptr)), "null");
    EXPECT_EQ(taken(QKBundlePath(nullptr)), "null");
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
        return taken(qk_pathOfQkoreBundleImage(Text(name).string));
    };
    EXPECT_EQ(image("knob"), folder / "knob_pro.png");  // before knob.tiff
    std::filesystem::remove(folder / "knob_pro.png");
    EXPECT_EQ(image("knob"), folder / "knob.tiff");
    EXPECT_EQ(image("plain"), "null");
    EXPECT_EQ(image(""), "null");
    EXPECT_EQ(taken(qk_pathOfQkoreBundleImage(nullptr)), "null");
    setResourceFolder({});
}

class Studio : public Object {
public:
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
};
class GreatStudio : public Studio {
public:
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
    {
        const ClassEntry entry(Studio::s_class);
        EXPECT_TRUE(isRunningAsProApp());
        setApplicationObject(nullptr);
        EXPECT_FALSE(isRunningAsProApp());
        setApplicationObject(studio);
    }
    EXPECT_FALSE(isRunningAsProApp());
    setApplicationObject(nullptr);
    studio->release();
}

}  // namespace
}  // namespace veltra
