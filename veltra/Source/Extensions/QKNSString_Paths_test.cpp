// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_Paths.h"

#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/process.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"
#include "veltra/platform/volumes.h"

namespace veltra {
namespace {

namespace fs = std::filesystem;

TEST(Paths, HaveComponents) {
    const std::tuple<const char*, const char*, const char*, const char*> kCases[] = {
        {"/a/b/c", "/", "/a/b", "/a"},
        {"a/b", "a", "a", ""},
        {"/a", "/", "/", "/"},
        {"/", "/", "/", "/"},
        {"", "", "", ""},
        {"a", "a", "", ""},
        {"//a//b//", "/", "//a", "/"},
        {"a/b/c/", "a", "a/b", "a"},
        {"///", "/", "/", "/"}};
    for (const auto& [path, first, withoutOne, withoutTwo] : kCases) {
        EXPECT_EQ(firstPathComponent(path), first) << path;
        const auto without = stringByDeletingNumberOfLastPathComponents;
        EXPECT_EQ(without(path, 1), withoutOne) << path;
        EXPECT_EQ(without(path, 2), withoutTwo) << path;
        EXPECT_EQ(without(path, INT32_MAX), *path == '/' ? "/" : "") << path;
        for (const std::int32_t none : {0, -1, INT32_MIN})
            EXPECT_EQ(without(path, none), path);
        EXPECT_EQ(containsLastPathComponents(path, path), *path != '\0');
    }
    EXPECT_TRUE(containsLastPathComponents("/a/b/c", "b/c/"));
    for (const char* components : {"/c", "bb/c", "b", "x/a/b/c", "/a/b"})
        EXPECT_FALSE(containsLastPathComponents("/a/bb/b/c", components)) << components;

    EXPECT_TRUE(containsPathComponent("/Users/Ann/x", "Ann") &&
                containsPathComponent("/Users/ann/x", "ANN", CompareOption::CaseInsensitive) &&
                containsPathComponent("/Users", "/"));
    for (const char* component : {"", "An", "Ann/x", "ann", "Users/"})
        EXPECT_FALSE(containsPathComponent("/Users/Ann/x", component)) << component;

    EXPECT_EQ(lastPathComponentCompare("/z/a", "/a/b/"), -1);
    EXPECT_EQ(lastPathComponentCompare("b", "/a/b"), 0);
    EXPECT_EQ(lastPathComponentCompare("\xE9", "z"), 1);
}

TEST(Paths, LeadThroughLinksAndAliases) {
    const testing::TemporaryFolder temporary;
    const fs::path folder = fs::canonical(temporary.path);
    const std::string at = folder.string() + "/";
    testing::putText(folder / "real/in side/take.wav");
    fs::create_symlink("real", folder / "link");
    fs::create_symlink("loop", folder / "loop");
    fs::create_symlink("nowhere", folder / "dangling");
    const auto alias = [&folder](const std::string& name, const std::string& url,
                                 const std::string& type = "Link", const std::string& more = "") {
        testing::putText(folder / name,
                         "# one\n[Other]\nURL=file:///no\n[Desktop Entry]\nVersion=1.0\nType = " +
                             type + "\nURL=" + url + "\nName=x\n[More]\nType=Application\n" + more);
    };
    alias("folder.desktop", "file://localhost" + at + "link/in%20side");
    alias("take.desktop", "FILE://" + at + "folder%2edesktop");
    alias("round.desktop", "file://" + at + "about.desktop");
    alias("about.desktop", "file:" + at + "round.desktop");
    alias("broken.desktop", "file://" + at + "none");
    alias("web.desktop", "http://host" + at);
    alias("bad.desktop", "file://" + at + "%zz");
    alias("nul.desktop", "file://" + at + "real%00");
    alias("program.desktop", "file://" + at + "real", "Application");
    alias("large.desktop", "file://" + at + "real", "Link", std::string(70'000, '#'));
    alias("link.txt", "file://" + at + "real");
    std::string before = "real";
    for (int number = 0; number < 18; ++number) {
        const std::string name = "chain" + std::to_string(number) + ".desktop";
        alias(name, "file://" + at + std::exchange(before, name));
    }

    const std::pair<std::string, std::string> kCases[] = {
        {"link/in side/../in side/take.wav", "real/in side/take.wav"},
        {"take.desktop", "real/in side"},
        {"folder.desktop/take.wav", "real/in side/take.wav"},
        {"take.desktop/none/more", "real/in side/none/more"},
        {"link/none", "real/none"},
        {"chain15.desktop", "real"}};
    const auto resolve = [](const std::string& path) {
        return pathByResolvingSymlinksAndAliasesInPath(path).value_or("nothing");
    };
    for (const auto& [path, result] : kCases) {
        EXPECT_EQ(resolve(at + path), at + result);
        EXPECT_EQ(resolve(resolve(at + path)), at + result) << "twice";
    }
    const std::string tooLong(300, 'x');
    for (const char* same : {"loop", "loop/x", "dangling", "round.desktop", "broken.desktop",
                             "web.desktop", "bad.desktop", "nul.desktop", "program.desktop",
                             "large.desktop", "link.txt", "chain16.desktop", tooLong.c_str()})
        EXPECT_EQ(resolve(at + same), at + same);
    EXPECT_EQ(resolve("") + resolve(std::string("/\0x", 3)), "nothingnothing");
    std::string deep;
    while (deep.size() < 100'000)
        deep += "x/";
    EXPECT_EQ(resolve(deep), deep);

    const std::string home = environmentVariable("HOME") ? environmentVariable("HOME") : "";
    setEnvironment("HOME", (folder / "link").c_str());
    EXPECT_EQ(resolve("~"), at + "real");
    EXPECT_EQ(resolve("~/in side"), at + "real/in side");
    EXPECT_EQ(resolve("~root"), "/root");
    for (const char* relative : {"no such item", "~no such user/x"})
        EXPECT_EQ(resolve(relative), (fs::current_path() / relative).string());
    setEnvironment("HOME", home.empty() ? nullptr : home.c_str());
}

TEST(Paths, AreVisibleUnlessTheirFolderHidesThem) {
    const testing::TemporaryFolder folder;
    for (const char* name : {"shown", "listed", ".dot", "late"})
        testing::putText(folder / name);
    fs::create_symlink("listed", folder.path / "seen");
    fs::create_symlink("shown", folder.path / ".link");
    fs::create_symlink("nowhere", folder.path / "dangling");
    testing::putText(folder / ".hidden", "listed\nshow\n" + std::string(70'000, 'x') + "\nlate\n");
    for (const char* name : {"shown", ".link", "late"})
        EXPECT_TRUE(isFileVisible(folder / name)) << name;
    for (const char* name : {"listed", "seen", ".dot", "dangling", "none"})
        EXPECT_FALSE(isFileVisible(folder / name)) << name;
    EXPECT_TRUE(isFileVisible("/") && !isFileVisible(""));
}

TEST(Paths, LieOnDiscWhereTheVolumeSaysSo) {
    struct OneVolume final : testing::InForce<Volumes> {
        std::optional<Volume> volumeOfPath(const std::string& path) noexcept override {
            asked = path;
            return volume;
        }
        std::optional<Volume> volume;
        std::string asked;
    } volumes;
    EXPECT_FALSE(isPathOnCDDVD("/"));
    for (int bits = 0; bits < 8; ++bits) {
        volumes.volume = {"/m", (bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, "", ""};
        EXPECT_EQ(isPathOnCDDVD("/"), bits == 5);
    }
    const testing::TemporaryFolder folder;
    fs::create_symlink("/proc", folder.path / "link");
    isPathOnCDDVD(folder / "link");
    EXPECT_EQ(volumes.asked, "/proc");
}

}  // namespace
}  // namespace veltra
