// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"

#include "veltra/Source/Extensions/QKNSFileManager_Plugins.h"
#include "veltra/Source/Extensions/QKNSURL_Extensions.h"
#include "veltra/Source/Extensions/testing/failing_file_system.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"
#include "veltra/platform/volumes.h"

#include <sys/stat.h>
#include <unistd.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;
using testing::FailingFileSystem;
using testing::putText;
using testing::TemporaryFolder;
using Names = std::vector<std::string>;

unsigned modeOf(const fs::path& item) {
    struct stat status {};
    ::stat(item.c_str(), &status);
    return status.st_mode & 07777U;
}

// Calls `body` in a new folder again and again, with each error in each of its steps.
void failEachStep(std::initializer_list<int> errors,
                  const std::function<void(const fs::path& folder)>& body) {
    for (const int number : errors) {
        bool isReached = true;
        for (int step = 0; isReached; ++step) {
            SCOPED_TRACE(::testing::Message() << "error " << number << " in step " << step);
            const TemporaryFolder folder;
            FailingFileSystem files;
            files.failing = step;
            files.error = {number, std::generic_category()};
            body(folder.path);
            isReached = files.steps > step;
        }
    }
}

TEST(FileManager, KnowsKindsOfItems) {
    const TemporaryFolder folder;
    putText(folder.path / "file.app");
    putText(folder.path / "Synth.VST3/x");
    putText(folder.path / "thing/Contents/x");
    putText(folder.path / "fake/Contents");
    putText(folder.path / ".vst3/x");
    fs::create_directory_symlink("thing", folder.path / "link");
    fs::create_symlink("loop", folder.path / "loop");
    const std::tuple<const char*, bool, bool, bool> kCases[] = {
        {"file.app", false, false, false},   {"Synth.VST3", false, true, true},
        {"thing", false, true, true},        {"fake", false, true, false},
        {".vst3", false, true, false},       {"link", true, true, false},
        {"loop", true, false, false},        {"none", false, false, false},
        {"file.app/x", false, false, false}, {"Synth.VST3/", false, true, true}};
    for (const auto& [name, isLink, isFolder, isPackage] : kCases) {
        EXPECT_EQ(isSymbolicLinkAtPath(folder / name), isLink) << name;
        EXPECT_EQ(isDirectoryAtPath(folder / name), isFolder) << name;
        EXPECT_EQ(isFilePackageAtPath(folder / name), isPackage) << name;
    }
    EXPECT_FALSE(isDirectoryAtPath("") || isDirectoryAtPath(std::string_view("/\0x", 3)));
    EXPECT_EQ(
        setFilePackageRule([](std::string_view path) noexcept { return path.ends_with("e"); }),
        nullptr);
    EXPECT_TRUE(isFilePackageAtPath(folder / "fake") && !isFilePackageAtPath(folder / "thing"));
    EXPECT_NE(setFilePackageRule(nullptr), nullptr);
}

TEST(FileManager, MakesFoldersAndTheFoldersOnTheWay) {
    const TemporaryFolder folder;
    const ::mode_t umaskBefore = ::umask(077);
    EXPECT_TRUE(createDirectoriesRecursivelyAtPath(folder / "a//b/c/", {0577}));
    EXPECT_TRUE(modeOf(folder.path / "a/b/c") == 0577 && modeOf(folder.path / "a") == 0777);
    EXPECT_TRUE(createDirectoriesRecursivelyAtPath(folder / "a/b/c", {0700}));
    EXPECT_EQ(modeOf(folder.path / "a/b/c"), 0577U);
    EXPECT_TRUE(makeSureDirectoryExistsAtPath(folder / "d/../e") &&
                isDirectoryAtPath(folder / "e"));
    ::umask(0300);
    EXPECT_TRUE(makeSureDirectoryExistsAtPath(folder / "f/g"));
    EXPECT_TRUE(modeOf(folder.path / "f") == 0777 && modeOf(folder.path / "f/g") == 0477);
    ::umask(umaskBefore);
    putText(folder.path / "file");
    fs::create_symlink("nowhere", folder.path / "dangling");
    fs::create_directory_symlink("a", folder.path / "link");
    EXPECT_TRUE(makeSureDirectoryExistsAtPath(folder / "link/new"));
    for (const char* path : {"file", "file/x", "dangling", "dangling/x"})
        EXPECT_FALSE(makeSureDirectoryExistsAtPath(folder / path)) << path;
    EXPECT_FALSE(makeSureDirectoryExistsAtPath("") ||
                 makeSureDirectoryExistsAtPath(folder / std::string(256, 'x').c_str()));

    // True only when the folder is there as wanted.
    failEachStep({EIO, ENOSPC, EEXIST, ENOENT, EACCES, ENOMEM}, [](const fs::path& place) {
        const bool isMade = createDirectoriesRecursivelyAtPath((place / "a/b/c").string(), {0711});
        EXPECT_TRUE(!isMade || modeOf(place / "a/b/c") == 0711);
    });
}

TEST(FileManager, ListsWithoutFollowingLinks) {
    const TemporaryFolder folder;
    const std::string bytes = "\xE9.WAV";
    for (const char* name : {"b.wav", "a/z.wav", "a/Plug.lv2/in.so", ".hidden.wav", "noext"})
        putText(folder.path / name);
    putText(folder.path / bytes);
    ASSERT_EQ(::truncate((folder / "b.wav").c_str(), 5'000'000'000), 0);  // beyond 32 bits
    fs::create_directory_symlink(".", folder.path / "a/self");
    const auto paths = [&](const Names& names) {
        Names result;
        for (const std::string& name : names)
            result.push_back(folder / name.c_str());
        return result;
    };
    const std::string at = folder.path;
    EXPECT_EQ(contentPathsAtPath(at, false), paths({".hidden.wav", "a", "b.wav", "noext", bytes}));
    EXPECT_EQ(contentPathsAtPath(at + "/", true), paths({".hidden.wav", "a", "a/Plug.lv2", "a/self",
                                                         "a/z.wav", "b.wav", "noext", bytes}));
    EXPECT_EQ(contentPathsAtPath(at + "/a", true, true),
              paths({"a/Plug.lv2", "a/Plug.lv2/in.so", "a/self", "a/z.wav"}));
    EXPECT_EQ(directoryContentsAtPath(at, "wav"), (Names{".hidden.wav", "b.wav", bytes}));
    EXPECT_EQ(directoryContentsAtPath(at, ""), (Names{"a", "noext"}));
    for (const char* path : {"none", "b.wav"}) {
        EXPECT_FALSE(contentPathsAtPath(folder / path, true));
        EXPECT_FALSE(directoryContentsAtPath(folder / path, ""));
    }
    EXPECT_EQ(resolveFile(folder / "b", {"aif", "wav"}), folder / "b.wav");
    EXPECT_EQ(resolveFile("noext", at, {"wav"}), folder / "noext");
    EXPECT_EQ(resolveFile("z", at + "/a/", {"wav"}), folder / "a/z.wav");
    EXPECT_FALSE(resolveFile("z", at, {"wav", ""}) || resolveFile("", {"wav"}) ||
                 resolveFile("", at, {"wav"}));

    putText(folder.path / "a/deep/Other.LV2");
    fs::create_symlink("nowhere", folder.path / "a/linked.lv2");
    EXPECT_EQ(searchForPlugins("lv2", at),
              paths({"a/Plug.lv2", "a/deep/Other.LV2", "a/linked.lv2"}));
    EXPECT_FALSE(searchForPlugins("", at) || searchForPlugins("lv2", at + "/none"));
}

TEST(FileManager, FindsNamesThatNobodyElseGets) {
    const TemporaryFolder folder;
    const std::string at = folder.path;
    EXPECT_EQ(uniqueFileNameAtPath(at, "Take", "wav"), "Take.wav");
    putText(folder.path / "Take.wav");
    fs::create_symlink("nowhere", folder.path / "Take 2.wav");
    EXPECT_EQ(uniqueFileNameAtPath(at, "Take", "wav"), "Take 3.wav");
    EXPECT_EQ(createUniqueFile(at, "Take", ""), "Take");
    EXPECT_EQ(createUniqueFile(at, "Take", ""), "Take 2");
    std::string longest;
    while (longest.size() < 300)
        longest += "\u00E9";
    for (int round = 0; round < 11; ++round) {
        const std::string name = createUniqueFile(at, longest, "wav").value_or("");
        EXPECT_TRUE(name.size() >= 253 && name.size() <= 255) << name;
        EXPECT_EQ(name.find_first_not_of("\u00E9") % 2, 0U) << "half a character";
        EXPECT_TRUE(round == 0 || name.ends_with(" " + std::to_string(round + 1) + ".wav")) << name;
    }
    for (const char* name : {"", "a/b", "../x"})
        EXPECT_FALSE(createUniqueFile(at, name, "wav"));
    EXPECT_FALSE(createUniqueFile(at, "a", "b/c") || createUniqueFile(at + "/none", "a", ""));
    EXPECT_FALSE(uniqueFileNameAtPath("", "a", "") ||
                 uniqueFileNameAtPath(at, std::string(1, '\0'), ""));

    std::array<std::string, 100> names;
    testing::onThreads(4, [&](std::size_t thread) {
        for (std::size_t round = 0; round < 25; ++round) {
            EXPECT_TRUE(makeSureDirectoryExistsAtPath(at + "/new/" + std::to_string(round)));
            names[thread * 25 + round] = createUniqueFile(at, "Racing", "wav").value_or("");
        }
    });
    const std::set<std::string> all(names.begin(), names.end());
    EXPECT_TRUE(all.size() == 100 && !all.contains(""));

    failEachStep({EIO, ENOSPC, EACCES, EMFILE}, [](const fs::path& place) {
        const std::optional<std::string> name = createUniqueFile(place.string(), "x", "y");
        EXPECT_EQ(name.has_value(), fs::exists(place / "x.y"));
    });
}

// The environment and the volumes of the desktop, as long as it lives.
struct Desktop final : Volumes {
    Desktop() {
        setEnvironment("XDG_DATA_HOME", (folder / "data").c_str());
        setEnvironment("XDG_DATA_DIRS", "/one/:relative::/two:/one");
        install(this);
    }
    ~Desktop() override {
        install(nullptr);
        setEnvironment("XDG_DATA_HOME", nullptr);
        setEnvironment("XDG_DATA_DIRS", nullptr);
    }
    std::optional<Volume> volumeOfPath(const std::string& path) noexcept override {
        if (!fs::exists(path)) return std::nullopt;
        return Volume{fs::canonical(folder.path / "disk"), false, true, true, "", ""};
    }
    TemporaryFolder folder;
};

TEST(FileManager, KnowsWherePluginsMayBe) {
    const Desktop desktop;
    const std::string program = executableFolder();
    EXPECT_EQ(fs::path(program), fs::read_symlink("/proc/self/exe").parent_path());
    EXPECT_EQ(pluginSearchPaths("Kit/Plug-ins"),
              (Names{desktop.folder / "data/Kit/Plug-ins", "/one/Kit/Plug-ins", "/two/Kit/Plug-ins",
                     program + "/Kit/Plug-ins"}));
    EXPECT_EQ(pluginSearchPaths("").size(), 4U);
    setEnvironment("XDG_DATA_HOME", "//");
    EXPECT_EQ(pluginSearchPaths("Kit").front(), "/Kit");
    setEnvironment("XDG_DATA_HOME", nullptr);
    setEnvironment("HOME", nullptr);
    EXPECT_TRUE(pluginSearchPaths("Kit").front().ends_with("/.local/share/Kit"));
    for (const char* name : {"/x", "..", "a/../../b"})
        EXPECT_TRUE(pluginSearchPaths(name).empty());
}

TEST(Url, IsInTheTrash) {
    const Desktop desktop;
    const std::string user = std::to_string(::geteuid());
    fs::create_directories(desktop.folder.path / "real/Trash/files/Old kit");
    fs::create_directory_symlink("real", desktop.folder.path / "data");
    fs::create_directories(desktop.folder.path / "disk/.Trash" / user / "files");
    fs::create_symlink("/proc", desktop.folder.path / "real/Trash/files/link");
    const std::string url = "file://" + desktop.folder.path.string() + "/";
    const std::string item = desktop.folder / "data/Trash/files/x";
    using namespace std::string_literals;
    for (const std::string& path :
         {"real/Trash/files/Old%20kit/a%20b.wav"s, "data/Trash/files/x"s, "data/Trash/files/link"s,
          "data/Trash/files/Old%20kit/"s, "disk/.Trash/" + user + "/files/x",
          "disk/.Trash-" + user + "/files/x/y"})
        EXPECT_TRUE(isInTrash(url + path)) << path;
    for (const std::string& path :
         {"real/Trash/files"s, "data/Trash/files/"s, "data/Trash/files/../x"s,
          "data/Trash/files/Old%20kit/.."s, "data/Trash/info/x"s, "data/Trash/files2/x"s,
          "disk/.Trash/" + user + "1/files/x", "disk/x/.Trash-" + user + "/files/x"})
        EXPECT_FALSE(isInTrash(url + path)) << path;
    for (const char* prefix : {"", "http://", "file://host", "file"})
        EXPECT_FALSE(isInTrash(prefix + item)) << prefix;
    EXPECT_FALSE(isInTrash("") || isInTrash("file:x") || isInTrash("file:///%"));
}

}  // namespace
}  // namespace veltra
