// SPDX-License-Identifier: MIT
// The program as a child: what it reports must be in order, and what it leaves behind intact.
#include "../console/test_recordings.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/processor/checksum.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace veltra::survivor {
namespace {

using namespace ::testing;
using console::testing::contents;
using console::testing::folder;
using console::testing::shell;

// Where a limit of the address space means what it says: a sanitizer needs more than it leaves.
class Survivor : public Test {
protected:
    void SetUp() override {
#ifdef VELTRA_SANITIZED
        GTEST_SKIP() << "a sanitizer needs more address space than a limit leaves";
#endif
    }
};

int survivor(const std::string& arguments, const std::string& before = {}) {
    return shell(before + "XDG_CONFIG_HOME=" + folder() + " " SURVIVOR " --document " + folder() +
                 "doc " + arguments + " >" + folder() + "out 2>" + folder() + "log");
}

std::string recordings() {
    return console::testing::synthetic("a.wav", 44100, "2 sine 440") + " " +
           console::testing::synthetic("b.wav", 44100, "1 pinknoise");
}

// A control group that holds no more than a number of bytes, of whichever kind the system has.
struct ControlGroup {
    explicit ControlGroup(const std::string& bytes) {
        const std::string name = "/veltra-survivor-" + std::to_string(::getpid());
        for (const auto& [root, limit] :
             {std::pair("/sys/fs/cgroup", "/memory.max"),
              std::pair("/sys/fs/cgroup/memory", "/memory.limit_in_bytes")}) {
            path = root + name;
            if (shell("mkdir " + path + " 2>/dev/null && echo " + bytes + " >" + path + limit +
                      " 2>/dev/null") == 0)
                return;
            remove();
        }
    }
    ~ControlGroup() { remove(); }
    void remove() {
        shell("rmdir " + path + " 2>/dev/null");
        path.clear();
    }
    std::string path;  // empty: the system lets nobody make one
};

// The lines of one act.
std::string act(const std::string& report, const std::string& name) {
    const std::size_t start = ("\n" + report).find("\n" + name + "\n");
    if (start == std::string::npos) return "no such act";
    std::size_t end = start + name.size();
    do
        end = report.find('\n', end + 1);
    while (end + 1 < report.size() && report[end + 1] == ' ');
    return report.substr(start, end + 1 - start);
}

// The levels that `who` came to, each when it was first reached.
std::vector<int> levels(const std::string& lines, const std::string& who) {
    std::vector<int> found;
    for (std::size_t at = 0; (at = lines.find(who + " level ", at)) != std::string::npos; ++at) {
        const int level = lines[at + who.size() + 7] - '0';
        if (std::find(found.begin(), found.end(), level) == found.end()) found.push_back(level);
    }
    return found;
}

// How many takes the contents name; -1 when one of them, or the contents, are not what they were.
int intactTakes() {
    std::istringstream lines(contents(folder() + "doc/contents.txt"));
    std::string before;
    int takes = 0;
    for (std::string line; std::getline(lines, line); before += line + "\n") {
        char number[8] = {};
        unsigned checksum = 0;
        int count = 0;
        if (std::sscanf(line.c_str(), "end %d %x", &count, &checksum) == 2)
            return count == takes && checksum == QKCRC32(0, before.data(), before.size()) ? takes
                                                                                          : -1;
        if (std::sscanf(line.c_str(), "take %7s %x", number, &checksum) != 2) return -1;
        const std::string take = contents(folder() + "doc/take-" + number + ".pcm");
        if (take.empty() || QKCRC32(0, take.data(), take.size()) != checksum) return -1;
        ++takes;
    }
    return -1;
}

TEST_F(Survivor, GoesThroughTheLevelsInOrderAndLosesNoTake) {
    EXPECT_EQ(survivor("--room 160 " + recordings()), 0) << contents(folder() + "log");
    const std::string report = contents(folder() + "out");

    const std::string recorded = act(report, "record");
    EXPECT_THAT(levels(recorded, "center"), ElementsAre(0, 1, 2)) << report;
    EXPECT_THAT(recorded, ContainsRegex("level 2.*\n +document saved"));
    EXPECT_THAT(recorded, HasSubstr("was given up and is whole"));
    EXPECT_THAT(act(report, "ask too much"), HasSubstr("refused; recording goes on"));
    const std::string plugIn = act(report, "plug-in");
    EXPECT_THAT(plugIn, HasSubstr("document saved"));
    if (AllocationZone::coverage() == AllocationZone::kFull) {
        EXPECT_THAT(levels(act(report, "ask too much"), "reserve"), ElementsAre(1, 0));
        EXPECT_THAT(plugIn, ContainsRegex("level 2\n +document saved.*\n +reserve level 0"));
        EXPECT_THAT(plugIn, HasSubstr("stopped in time"));
    }
    EXPECT_THAT(report, Not(HasSubstr("NOT")));
    EXPECT_GT(intactTakes(), 10);
    EXPECT_THAT(act(report, "finish"), HasSubstr(std::to_string(intactTakes()) + " takes, intact"));
}

// Where nothing is refused, and a process that takes more than there is, is killed.
TEST_F(Survivor, LivesInAControlGroupWithAndWithoutALimitOfItsAddressSpace) {
    for (const char* mode : {"--room 4096 ", "--room 4096 --pressure "}) {
        const ControlGroup group("251658240");  // 240 MiB
        if (group.path.empty()) GTEST_SKIP() << "no control group can be made here";
        const std::string enter = "echo 0 >" + group.path + "/cgroup.procs && ";
        EXPECT_EQ(survivor(mode + recordings(), enter), 0) << mode << contents(folder() + "log");
        const std::string report = contents(folder() + "out");
        EXPECT_THAT(levels(act(report, "record"), "center"), ElementsAre(0, 1, 2)) << report;
        EXPECT_THAT(report, Not(HasSubstr("NOT"))) << report;
        EXPECT_GT(intactTakes(), 10);
    }
}

TEST_F(Survivor, TakesALimitThatIsThereAlready) {
    EXPECT_EQ(survivor("--room 1024 " + recordings(), "ulimit -v 400000; "), 0)
        << contents(folder() + "log");
    EXPECT_GT(intactTakes(), 10);
}

TEST(SurvivorOptions, SayWhatCannotBeDone) {
    for (const char* room : {"--room much", "--room 1"})
        EXPECT_EQ(survivor(room), 2);
    EXPECT_EQ(survivor(folder() + "nothing.wav"), 1);
    EXPECT_THAT(contents(folder() + "log"), HasSubstr("there is no such file"));
}

}  // namespace
}  // namespace veltra::survivor
