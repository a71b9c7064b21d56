// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Merge.h"

#include "veltra/Source/Extensions/testing/failing_file_system.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;
using testing::FailingFileSystem;
using testing::TemporaryFolder;
using testing::textOf;
using Reason = MergeProblem::Reason;

void setTime(const fs::path& item, time_t seconds) {
    const timespec times[2] = {{seconds, 5}, {seconds, 123456789}};
    ::utimensat(AT_FDCWD, item.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

constexpr time_t kFarAway = 5'000'000'000;  // beyond 32 bits

void put(const fs::path& file, std::string_view text, ::mode_t mode = 0644,
         time_t seconds = kFarAway) {
    testing::putText(file, text);
    ::chmod(file.c_str(), mode);
    setTime(file, seconds);
}

// Everything below a folder: contents, and with `isExact` permissions and times of what is no
// folder.
using Tree = std::map<std::string, std::string>;
Tree treeOf(const fs::path& folder, bool isExact = true) {
    Tree tree;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        const fs::path& path = item.path();
        struct stat status {};
        ::lstat(path.c_str(), &status);
        std::string text = S_ISDIR(status.st_mode)   ? "folder"
                           : S_ISLNK(status.st_mode) ? "link " + fs::read_symlink(path).string()
                           : S_ISREG(status.st_mode) ? "file " + textOf(path)
                                                     : "other";
        if (isExact && !S_ISDIR(status.st_mode))
            text += " " + std::to_string(status.st_mode) + " " +
                    std::to_string(status.st_mtim.tv_sec) + "." +
                    std::to_string(status.st_mtim.tv_nsec);
        tree[path.lexically_relative(folder)] = text;
    }
    return tree;
}

struct Log : MergeHandler {
    MergeAnswer willMerge(std::string_view, std::string_view) noexcept override {
        return seen++ == stopAt ? MergeAnswer::Stop : MergeAnswer::GoOn;
    }
    MergeAnswer couldNotMerge(const MergeProblem& problem) noexcept override {
        ++counts[problem.reason];
        last = std::string(problem.sourcePath);
        if (problem.reason == Reason::LeftBehind) leftBehind = problem.leftBehind;
        return onProblem;
    }
    int seen = 0;
    int stopAt = -1;
    MergeAnswer onProblem = MergeAnswer::GoOn;
    std::map<Reason, int> counts;
    std::string last;
    std::string leftBehind;
};

// A kit of samples on both sides.
struct Kits {
    Kits() {
        put(from / "a.wav", "new a", 0640);
        put(from / "long.wav", std::string(200, 'n'));
        put(from / "sub/b.wav", "new b", 0444);
        put(from / "Plug.vst3/Contents/x", "new x", 0755);
        put(from / "Plug.vst3/y", "new y");
        fs::create_symlink("nowhere", from / "link");
        setTime(from / "link", 1000);
        put(to / "a.wav", "old a", 0600, 2000);
        put(to / "only.wav", "only here");
        put(to / "Plug.vst3/Contents/x", "old x", 0644, 2000);
        put(to / "Plug.vst3/Contents/z", "old z");
        fs::create_symlink("before", to / "link");
        setTime(to / "link", 2000);
    }
    bool merge(bool isReplacing, MergeHandler* handler = nullptr) const {
        return mergePath(from.string(), to.string(), isReplacing, handler);
    }
    TemporaryFolder folder;
    const fs::path from = folder.path / "from";
    const fs::path to = folder.path / "to";
};

Tree merged(Tree from, Tree to, bool isReplacing) {
    Tree& winner = isReplacing ? from : to;
    Tree& loser = isReplacing ? to : from;
    std::erase_if(loser, [](const auto& item) { return item.first.starts_with("Plug.vst3"); });
    winner.merge(loser);
    return winner;
}

TEST(MergePath, ReplacesOrKeepsWhatBothHave) {
    for (const bool isOld : {false, true}) {
        for (const bool isReplacing : {false, true}) {
            const Kits kits;
            FailingFileSystem files;
            files.isOld = isOld;
            files.most = 7;
            const Tree from = treeOf(kits.from);
            const Tree expected = merged(from, treeOf(kits.to), isReplacing);
            Log log;
            for (const int time : {1, 2}) {
                EXPECT_TRUE(kits.merge(isReplacing, &log)) << time;
                EXPECT_EQ(treeOf(kits.to), expected) << time;
                EXPECT_EQ(treeOf(kits.from), from) << time;
            }
            EXPECT_TRUE(log.counts.empty());
        }
    }
}

// One step fails, once. Whichever it was: the source is whole, each item of the target is the old
// one or the new one, a package as a whole, nothing hidden is left unless told, and true is
// answered only when all is there.
class OneFailure {
public:
    struct Case {
        int step;
        int number;
        bool isOld;
    };
    struct Outcome {
        std::vector<std::string> kinds;  // of each step that was reached
        bool isComplete;
    };

    Outcome check(const Case& one) const {
        const Kits kits;
        Log log;
        Outcome outcome{};
        {
            FailingFileSystem files;
            files.isOld = one.isOld;
            files.failing = one.step;
            files.error = {one.number, std::generic_category()};
            files.beforeStep = [&](std::string_view kind, std::string_view) {
                outcome.kinds.emplace_back(kind);
            };
            outcome.isComplete = kits.merge(true, &log);
        }
        SCOPED_TRACE(::testing::Message() << "step " << one.step << " error " << one.number);
        EXPECT_EQ(treeOf(kits.from), m_from);
        EXPECT_EQ(outcome.isComplete, log.counts.empty());
        EXPECT_TRUE(!outcome.isComplete || treeOf(kits.to) == m_all);
        const Tree now = treeOf(kits.to, false);
        const bool isPlugNew = now.contains("Plug.vst3/y");
        for (const auto& [path, text] : now) {
            if (path.find(".veltra-") != path.npos) {
                EXPECT_FALSE(log.leftBehind.empty());
                EXPECT_TRUE((kits.to / path).string().starts_with(log.leftBehind)) << path;
                continue;
            }
            const bool isNew = m_fromTexts.contains(path) && m_fromTexts.at(path) == text;
            const bool isBefore = m_toTexts.contains(path) && m_toTexts.at(path) == text;
            const bool isPlug = path.starts_with("Plug.vst3");
            EXPECT_TRUE((isNew && (isPlugNew || !isPlug)) || (isBefore && !(isPlugNew && isPlug)))
                << path;
        }
        for (const auto& [path, text] : m_toTexts)
            EXPECT_TRUE(now.contains(path) || (isPlugNew && path.starts_with("Plug.vst3"))) << path;
        return outcome;
    }

private:
    const Kits m_untouched;
    const Tree m_from = treeOf(m_untouched.from), m_fromTexts = treeOf(m_untouched.from, false),
               m_toTexts = treeOf(m_untouched.to, false),
               m_all = merged(m_from, treeOf(m_untouched.to), true);
};

TEST(MergePath, LosesNothingWhicheverStepFails) {
    // Thousands of trees: in memory, if there is a place for files there.
    if (fs::is_directory("/dev/shm")) setEnvironment("TMPDIR", "/dev/shm");

    // Each step with the errors that are looked at.
    constexpr std::pair<int, bool> kErrors[] = {
        {EIO, false},    {ENOSPC, false}, {EACCES, false},     {EEXIST, false},
        {ENOENT, false}, {ENOMEM, false}, {EOPNOTSUPP, false}, {EIO, true},
        {EEXIST, true},  {ENOENT, true},  {EOPNOTSUPP, true}};
    const OneFailure failure;
    std::set<std::string> told;  // the kinds of steps that a merge cannot do without
    for (const auto& [number, isOld] : kErrors) {
        for (int step = 0; step < 1000; ++step) {
            const auto [kinds, isComplete] = failure.check({step, number, isOld});
            if (kinds.size() <= static_cast<std::size_t>(step)) break;
            if (!isComplete && number == EIO) told.insert(kinds[static_cast<std::size_t>(step)]);
        }
    }
    EXPECT_EQ(told,
              (std::set<std::string>{"addName", "close", "copyPart", "createFile", "facts", "flush",
                                     "list", "makeFolder", "makeLink", "open", "read", "readLink",
                                     "remove", "rename", "setPermissions", "setTimes", "write"}));
}

TEST(MergePath, RefusesATargetInItsSourceBeforeItWrites) {
    const Kits kits;
    fs::create_directory_symlink(kits.from / "sub", kits.folder / "door");
    const Tree before = treeOf(kits.folder.path);
    for (const char* target : {"from", "from/sub", "from/sub/new", "from/", "from/sub/..", "door/x",
                               "from/Plug.vst3/Contents"}) {
        FailingFileSystem files;
        Log log;
        EXPECT_FALSE(mergePath(kits.from.string(), kits.folder / target, true, &log)) << target;
        EXPECT_EQ(log.counts[Reason::InsideItself], 1) << target;
        EXPECT_EQ(files.writes, 0) << target;
    }
    EXPECT_EQ(treeOf(kits.folder.path), before);

    // The other way round, the folder must not be merged into itself either, nor be replaced.
    for (const auto& [source, target] : {std::pair("out/in", "out"),
                                         {"A.vst3/up/A.vst3", "A.vst3"},
                                         {"plugs/B.vst3/up", "plugs"}}) {
        const TemporaryFolder folder;
        for (const char* name : {"out/in/in/c", "A.vst3/up/A.vst3/c", "plugs/B.vst3/up/B.vst3/c"})
            put(folder.path / name, "c");
        const Tree all = treeOf(folder.path);
        Log log;
        EXPECT_FALSE(mergePath(folder / source, folder / target, true, &log)) << source;
        EXPECT_EQ(log.counts[Reason::InsideItself], 1) << source;
        EXPECT_EQ(treeOf(folder.path), all) << source;
    }
}

TEST(MergePath, TellsWhatItLeavesOut) {
    const TemporaryFolder folder;
    const fs::path from = folder.path / "from";
    const fs::path to = folder.path / "to";
    for (const char* name : {"file", "folder/inside", "linked/secret", "plain/Contents/c", "z"})
        put(from / name, "new");
    ::mkfifo((from / "pipe").c_str(), 0600);
    fs::create_symlink("loop", from / "loop");
    for (const char* name : {"to/folder", "to/file/kept", "to/plain/mine", "elsewhere/secret"})
        put(folder.path / name, "old");
    fs::create_directory_symlink(folder.path / "elsewhere", to / "linked");
    Log log;
    EXPECT_FALSE(mergePath(from.string(), to.string(), true, &log));
    EXPECT_EQ(log.counts,
              (std::map<Reason, int>{{Reason::KindsDiffer, 4}, {Reason::NotCopied, 1}}));
    EXPECT_EQ(textOf(folder / "elsewhere/secret"), "old");
    EXPECT_TRUE(fs::is_symlink(to / "loop") && textOf(to / "z") == "new");
    EXPECT_TRUE(textOf(to / "folder") == "old" && fs::exists(to / "plain/mine"));

    // The path of what it cannot remove, also where the target's ends in "/".
    {
        FailingFileSystem files;
        files.error = std::make_error_code(std::errc::io_error);
        files.beforeStep = [&](std::string_view step, std::string_view) {
            if (step == "remove") files.failing = files.steps;
        };
        fs::create_directories(to / "plain.app");
        Log leaving;
        EXPECT_FALSE(mergePath(folder / "from/plain", folder / "to/plain.app/", true, &leaving));
        EXPECT_TRUE(fs::exists(leaving.leftBehind)) << leaving.leftBehind;
    }

    // Stopped, and paths that lead nowhere.
    const TemporaryFolder empty;
    Log stopped;
    stopped.onProblem = MergeAnswer::Stop;
    EXPECT_FALSE(mergePath(from.string(), to.string(), true, &stopped));
    EXPECT_EQ(stopped.counts, (std::map<Reason, int>{{Reason::KindsDiffer, 1}}));
    MergeHandler deaf;
    EXPECT_FALSE(mergePath(from.string(), to.string(), true, &deaf));
    Log stopping;
    stopping.stopAt = 2;
    EXPECT_FALSE(mergePath(from.string(), empty / "to", true, &stopping));
    EXPECT_TRUE(stopping.seen == 3 && stopping.counts.empty() && fs::exists(empty / "to/file"));
    for (const auto& [source, target] :
         {std::pair<std::string, std::string>(empty / "none", empty / "x"),
          {from, empty / "no/folder"},
          {"", empty / "x"},
          {from, std::string("x\0y", 3)},
          {from, empty / std::string(256, 'x').c_str()}}) {
        Log nowhere;
        EXPECT_FALSE(mergePath(source, target, true, &nowhere)) << source;
        EXPECT_EQ(nowhere.counts[Reason::Failed], 1) << source;
    }
}

TEST(MergePath, TakesAnyName) {
    const TemporaryFolder folder;
    const std::string longest(255, 'x');
    for (const char* name : {longest.c_str(), "caf\xE9", "a\nb\\", ".hidden", " "})
        put(folder.path / "from" / name / name, name);
    put(folder.path / "to" / longest / longest, "old");
    EXPECT_TRUE(mergePath(folder / "from/", folder / "to", true, nullptr));
    EXPECT_EQ(treeOf(folder.path / "to"), treeOf(folder.path / "from"));
    EXPECT_TRUE(mergePath(folder / "from/ / ", folder / "file", false, nullptr));
    EXPECT_EQ(textOf(folder / "file"), " ");
    EXPECT_TRUE(testing::holdsInChild([&folder] {
        fs::current_path(folder.path);
        return mergePath("from", "near", false, nullptr) &&
               mergePath("from/..//near/.", "../" + folder.path.filename().string() + "/far", true,
                         nullptr) &&
               treeOf("far", false) == treeOf("from", false);
    }));
}

TEST(MergePath, GivesWayToThoseWhoAreFaster) {
    for (const bool isReplacing : {false, true}) {
        for (const bool isOld : {false, true}) {
            const TemporaryFolder folder;
            for (const char* name : {"a", "b", "grows", "sub/c"})
                put(folder.path / "from" / name, "ours");
            fs::create_directory(folder.path / "to");
            FailingFileSystem files;
            files.isOld = isOld;
            files.beforeStep = [&](std::string_view step, std::string_view name) {
                const bool isPlaced = step == "rename" || step == "addName";
                if (isPlaced && name == "a") put(folder.path / "to/a", "theirs");
                if (isPlaced && name == "b") fs::create_directory(folder.path / "to/b");
                if (step == "makeFolder" && name == "sub") put(folder.path / "to/sub/d", "theirs");
                if (step == "open" && name == "grows")
                    put(folder.path / "from/grows", "o", 0644, 9);
                if (step == "read" && textOf(folder / "from/grows").size() == 1)
                    put(folder.path / "from/grows", "longer");
            };
            Log log;
            EXPECT_FALSE(mergePath(folder / "from", folder / "to", isReplacing, &log));
            EXPECT_EQ(log.counts[Reason::KindsDiffer], isReplacing ? 1 : 0);
            EXPECT_EQ(log.counts[Reason::Failed], 1);
            EXPECT_EQ(treeOf(folder.path / "to", false),
                      (Tree{{"a", isReplacing ? "file ours" : "file theirs"},
                            {"b", "folder"},
                            {"sub", "folder"},
                            {"sub/c", "file ours"},
                            {"sub/d", "file theirs"}}));
        }
    }
}

TEST(MergePath, ShowsReadersWholeFilesOnly) {
    const TemporaryFolder folder;
    constexpr std::size_t kSize = 300'000;
    put(folder.path / "A/take", std::string(kSize, 'A'));
    put(folder.path / "B/take", std::string(kSize, 'B'));
    put(folder.path / "to/take", std::string(kSize, 'A'));
    std::atomic<bool> isDone{false};
    std::atomic<int> looks{0};
    const std::jthread reader([&] {
        for (; !isDone; ++looks) {
            const std::string text = textOf(folder / "to/take");
            EXPECT_TRUE(text == std::string(kSize, 'A') || text == std::string(kSize, 'B'));
        }
    });
    for (int round = 0; round < 60 || looks < 30; ++round)
        EXPECT_TRUE(mergePath(folder / (round % 2 == 0 ? "B" : "A"), folder / "to", true, nullptr));
    isDone = true;
}

}  // namespace
}  // namespace veltra
