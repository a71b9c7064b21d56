// SPDX-License-Identifier: MIT
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/cancelled_thread.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/fake_memory_system.h"

#include <poll.h>

namespace veltra {
namespace {

using testing::FakeMemorySystem;
using Bytes = std::optional<std::uint64_t>;

constexpr std::uint64_t kKiB = 1024;
constexpr Bytes kNone;

TEST(MemoryFacts, SayNothingWhereTheSystemSaysNothing) {
    FakeMemorySystem system;
    const std::string junk =
        std::string(5000, 'x') + "\n" + std::string("MemTotal: \0 kB\n\n:", 17);
    for (const std::string& text : {std::string(), junk, std::string("0::\n-\nsome avg10=nan\n"),
                                    std::string("some avg10=101\nfull avg60=1\n")}) {
        for (const char* path : {"/proc/meminfo", "/proc/self/cgroup", "/proc/self/mountinfo",
                                 "/proc/self/status", "/proc/pressure/memory"})
            system.files[path] = text;
        const MemoryFacts facts = MemoryFactsReader().read();
        EXPECT_FALSE(facts.room() || facts.capacity() || facts.someStalled || facts.allStalled);
    }
}

TEST(MemoryFacts, TakeTheMachineTheProcessAndItsStalls) {
    FakeMemorySystem system;
    system.files["/proc/meminfo"] =
        std::string(9000, '#') +  // longer than any line that counts
        "\nMemTotalX: 1 kB\nMemTotal:       1000 kB\nMemAvailable:\t400 kB\nMemAvailable: 9 kB\n";
    system.files["/proc/self/status"] = "Name:\tx\nVmSize:\t    300 kB\nVmRSS: 1 kB";
    system.files["/proc/pressure/memory"] =
        "some avg10=12.50 avg60=1.00 avg300=0.10 total=99\nfull avg10=100.00 avg60=0 total=1";
    MemoryFacts facts = MemoryFactsReader().read();
    EXPECT_TRUE(facts.total == 1000 * kKiB && facts.available == 400 * kKiB);
    EXPECT_TRUE(facts.room() == 400 * kKiB && facts.capacity() == 1000 * kKiB);
    EXPECT_TRUE(facts.someStalled == 12.5 && facts.allStalled == 100.0);
    EXPECT_FALSE(facts.groupLimit || facts.groupRoom || facts.addressSpaceLimit);

    system.limits.current = 350 * kKiB;
    facts = MemoryFactsReader().read();
    EXPECT_TRUE(facts.room() == 50 * kKiB && facts.memoryRoom() == 400 * kKiB);
    system.limits.current = 200 * kKiB;
    EXPECT_EQ(MemoryFactsReader().read().room(), 0U);
    system.files["/proc/meminfo"] = "MemTotal: 99999999999999999999 kB\nMemAvailable: -5 kB\n";
    facts = MemoryFactsReader().read();
    EXPECT_TRUE(facts.total == UINT64_MAX && !facts.available);
}

// The mounts as the kernel lists them: `root` is what of the hierarchy is mounted there.
std::string mount(const char* root, const char* point, const char* type, const char* options) {
    return std::string("31 23 0:28 ") + root + " " + point + " rw,relatime shared:9 master:1 - " +
           type + " source rw," + options + "\n";
}

// Of a list "/folder/limit=text;/folder/use=text": memory.limit and so on. A bar ends a line.
std::map<std::string, std::string> filesOf(std::string list) {
    std::replace(list.begin(), list.end(), '|', '\n');
    std::map<std::string, std::string> files;
    std::istringstream all(list);
    for (std::string path; std::getline(all, path, '=');)
        std::getline(all, files[path.insert(path.rfind('/') + 1, "memory.")], ';');
    return files;
}

TEST(MemoryFacts, FollowTheControlGroupsUpTheTree) {
    const std::string unified = mount("/", "/u", "cgroup2", "nsdelegate");
    const std::string legacy =
        mount("/", "/cg/cpu", "cgroup", "cpu") + mount("/", "/my\\040m", "cgroup", "memory");
    const std::string parent =
        "/my m/g/limit_in_bytes=100;/my m/g/usage_in_bytes=99;/my m/g/use_hierarchy=";
    const std::string container = mount("/docker/1", "/cg", "cgroup", "memory");
    using Text = std::string;
    const std::tuple<const char*, Text, Text, Text, Bytes, Bytes> cases[] = {
        {"no limit", "0::/a/b\n", unified, "/u/a/b/max=max|;/u/a/b/current=5|", kNone, kNone},
        {"the least room, above", "0::/a/b\n", unified,
         "/u/a/b/max=1000|;/u/a/b/current=100|;/u/a/max=2000|;/u/a/current=1950|", 1000, 50},
        {"a softer limit", "0::/\n", unified, "/u/max=max;/u/high=700;/u/current=900", 700, 0},
        {"files in memory are room", "0::/a\n", unified,
         "/u/a/max=1000;/u/a/current=1000;/u/a/stat=anon 1|inactive_file_x 7|inactive_file 300|",
         1000, 300},
        {"a limit without a use", "0::/a\n", unified, "/u/a/max=1000", 1000, kNone},
        {"nonsense", "0::/a\n", unified, "/u/a/max=12abc;/u/a/current=x", kNone, kNone},
        {"the older kind, an escaped place", "3:cpu:/x\n4:foo,memory:/g\n0::/\n", legacy + unified,
         "/my m/g/limit_in_bytes=400|;/my m/g/usage_in_bytes=390|;"
         "/my m/g/stat=inactive_file 1|total_inactive_file 20|;"
         "/my m/limit_in_bytes=9223372036854771712|;/my m/usage_in_bytes=123456|",
         400, 30},
        {"a parent that counts", "4:memory:/g/h\n", legacy, parent + "1", 100, 1},
        {"a parent that does not", "4:memory:/g/h\n", legacy, parent + "0", kNone, kNone},
        {"a part is mounted", "4:memory:/docker/1/in\n", container,
         "/cg/in/limit_in_bytes=100;/cg/in/usage_in_bytes=1", 100, 99},
        {"another part is mounted", "4:memory:/docker/12\n", container,
         "/cg/limit_in_bytes=100;/cg/usage_in_bytes=2", 100, 98},
        {"just that part is mounted", "4:memory:/docker/1\n", container,
         "/cg/limit_in_bytes=100;/cg/usage_in_bytes=3", 100, 97},
        {"both kinds", "4:memory:/g\n0::/a\n", legacy + unified,
         "/my m/g/limit_in_bytes=100;/my m/g/usage_in_bytes=1;/u/a/max=90;/u/a/current=80", 90, 10},
        {"too long a name", "0::/" + std::string(3000, 'a') + "\n", unified, "", kNone, kNone}};
    for (const auto& [name, groups, mounts, files, limit, room] : cases) {
        FakeMemorySystem system;
        system.files = filesOf(files);
        system.files["/proc/self/cgroup"] = groups;
        system.files["/proc/self/mountinfo"] = mount("/", "/", "ext4", "discard") + mounts;
        const MemoryFacts facts = MemoryFactsReader().read();
        EXPECT_EQ(facts.groupLimit, limit) << name;
        EXPECT_EQ(facts.groupRoom, room) << name;
    }
}

TEST(MemoryFacts, TakeTheGroupsOwnStallsWhereItTellsThem) {
    FakeMemorySystem system;
    system.files = {{"/proc/self/cgroup", "0::/a\n"},
                    {"/proc/self/mountinfo", mount("/", "/sys/fs/cgroup", "cgroup2", "x")},
                    {"/sys/fs/cgroup/a/memory.pressure", "some avg10=3.00\n"},
                    {"/proc/pressure/memory", "some avg10=9.00\nfull avg10=8\n"}};
    EXPECT_EQ(MemoryFactsReader().read().someStalled, 3.0);
    EXPECT_FALSE(MemoryFactsReader().read().allStalled);
    system.files.erase("/sys/fs/cgroup/a/memory.pressure");
    EXPECT_STREQ(MemoryFactsReader().pressurePath(), "/proc/pressure/memory");
    EXPECT_EQ(MemoryFactsReader().read().allStalled, 8.0);
}

TEST(MemorySystem, LimitsTheAddressSpaceOfThisProcess) {
    EXPECT_TRUE(testing::holdsInChild([] {
        MemorySystem& system = MemorySystem::current();
        const auto isSet = [&system](std::uint64_t bytes) {
            return system.setAddressSpaceLimit(bytes) &&
                   system.addressSpaceLimits().current == bytes;
        };
        return isSet(std::uint64_t{1} << 30) && !isSet(MemorySystem::kNoLimit - 1) &&
               isSet(MemorySystem::kNoLimit);
    }));
}

TEST(MemoryFacts, AreToBeHadOfThisMachine) {
    const MemoryFactsReader reader;
    const MemoryFacts facts = reader.read();
    ASSERT_TRUE(facts.total && facts.available && facts.addressSpaceUsed);
    EXPECT_LT(*facts.available, *facts.total);
    EXPECT_GT(*facts.addressSpaceUsed, 1000 * kKiB);

    MemorySystem& system = MemorySystem::current();
    const MemorySystem::Events events = system.openEvents(reader.pressurePath(), milliseconds(1));
    pollfd all{events.all, POLLIN, 0};
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(::poll(&all, 1, 10'000), 1);
        system.takeEvents(events);
    }
    system.closeEvents(events);
    MemorySystem::Events others;
    char text[9];
    const std::function<void()> calls[] = {
        [&] { EXPECT_EQ(system.read("/proc/meminfo", 0, text), 9); },
        [&] { others = system.openEvents("/no such file", milliseconds(1)); },
        [&] { system.takeEvents(others); }, [&] { system.closeEvents(others); }};
    for (const auto& call : calls)
        EXPECT_TRUE(testing::isCancelledOnlyAfter(call));
    EXPECT_TRUE(others.all >= 0 && others.trigger == -1);
}

}  // namespace
}  // namespace veltra
