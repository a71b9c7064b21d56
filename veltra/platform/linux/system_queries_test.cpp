// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/system_queries.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/processor_identity.h"
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/testing/fake_memory_system.h"
#include "veltra/platform/testing/fake_system_queries.h"

#include <ctime>

#include <sched.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace veltra {
namespace {

using testing::FakeMemorySystem;
using testing::FakeSystemQueries;
using Kind = ProcessorIdentity::Kind;
using Number = std::optional<std::uint64_t>;

constexpr char kBase[] = "/sys/devices/system/cpu/cpu0/cpufreq/base_frequency";
constexpr char kHighest[] = "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq";

TEST(SystemQueries, NumbersHaveFourOrEightBytes) {
    FakeSystemQueries queries;
    EXPECT_FALSE(queries.number(SystemKey::MemorySize));
    for (std::size_t length = 0; length <= 16; ++length) {
        queries.answers[SystemKey::MemorySize].assign(length, std::byte{0xAB});
        const Number expected = length == 4   ? Number(0xABABABAB)
                                : length == 8 ? Number(0xABABABABABABABAB)
                                              : std::nullopt;
        EXPECT_EQ(queries.number(SystemKey::MemorySize), expected) << length;
    }
    queries.setText(SystemKey::KernelRelease, std::string(300, 'x'));
    EXPECT_EQ(queries.text(SystemKey::KernelRelease), std::string(255, 'x'));
    queries.setText(SystemKey::KernelRelease, std::string_view("9.8.0\0junk", 10));
    EXPECT_EQ(queries.text(SystemKey::KernelRelease), "9.8.0");
}

TEST(SystemQueries, TakeTheFrequencyFromTheBestSourceThereIs) {
    using Files = std::map<std::string, std::string>;
    const std::string list = "processor\t: 0\ncpu MHz\t\t: 2599.998\ncpu MHz\t\t: 1.0\n";
    const std::tuple<Files, std::uint64_t, Number> cases[] = {
        {{{kBase, "2100000\n"}, {kHighest, "4000000\n"}, {"/proc/cpuinfo", list}}, 1, 2100000000},
        {{{kHighest, "4000000\n"}, {"/proc/cpuinfo", list}}, 1, 4000000000},
        {{{kBase, "0\n"}, {kHighest, "fast\n"}, {"/proc/cpuinfo", list}}, 7, 7},
        {{{"/proc/cpuinfo", list}}, 0, 2599998000},
        {{{"/proc/cpuinfo", "clock\t\t: 1999.999999MHz\n"}}, 0, 1999999999},
        {{{"/proc/cpuinfo", "none\ncpu MHz : nan\ncpu MHz : -1\ncpu MHz : 1e99\nclock : 5\n"}},
         0,
         5000000},
        {Files(), 0, {}},
    };
    for (const auto& [files, base, expected] : cases) {
        FakeMemorySystem system;
        system.files = files;
        EXPECT_EQ(processorFrequency(base), expected);
    }
}

TEST(SystemQueries, KnowProcessorsByTheirPublishedNumbers) {
    const std::tuple<ProcessorIdentity, Number, Number, Number> cases[] = {
        {{Kind::X86, true, 6, 14, 0, 0}, 3, 0x73D67300, {}},
        {{Kind::X86, true, 6, 15, 0, 0}, 3, 0x426F69EF, {}},
        {{Kind::X86, true, 6, 26, 0, 0}, 3, 0x6B5A4CD2, {}},
        {{Kind::X86, true, 6, 31, 0, 0}, 3, {}, {}},   // the extension counts
        {{Kind::X86, true, 15, 15, 0, 0}, 3, {}, {}},  // another family
        {{Kind::X86, false, 6, 15, 0, 0}, 3, {}, {}},  // another maker
        {{Kind::PowerPc, false, 0, 0, 0, 0x0008}, 9, 0xCEE41549, 0x108},
        {{Kind::PowerPc, false, 0, 0, 0, 0x000C}, 10, 0x77C184AE, 0x10C},
        {{Kind::PowerPc, false, 0, 0, 0, 0x8000}, 11, 0x37FC219F, 0x110},
        {{Kind::PowerPc, false, 0, 0, 0, 0x0039}, 100, 0xED76D8AA, 313},
        {{Kind::PowerPc, false, 0, 0, 0, 0x004E}, {}, {}, 0x14E},
        {{Kind::PowerPc, false, 0, 0, 0, 0}, {}, {}, {}},
        {{Kind::Other, true, 6, 15, 0, 0x39}, {}, {}, {}},
    };
    for (const auto& [identity, subtype, family, native] : cases) {
        const std::uint32_t mark = identity.model + identity.processorVersion;
        EXPECT_EQ(processorSubtype(identity), subtype) << mark;
        EXPECT_EQ(processorFamily(identity), family) << mark;
        EXPECT_EQ(nativeProcessorType(identity), native) << mark;
        EXPECT_EQ(processorType(identity).has_value(), identity.kind != Kind::Other);
    }
}

TEST(SystemQueries, ReadBootTimeAndSizesOutOfTheirFiles) {
    FakeMemorySystem system;
    const SystemQueries& queries = SystemQueries::current();
    const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    std::array<std::uint64_t, 2> sizes{};
    std::array<std::int32_t, 2> boot{};
    const auto bootTime = std::as_writable_bytes(std::span(boot));
    EXPECT_FALSE(queries.bytes(SystemKey::TaskSizes, {}) || queries.bytes(SystemKey::BootTime, {}));
    system.files = {{"/proc/self/statm", "300 20 10 1 0 5 0\n"},
                    {"/proc/stat", "cpu 1\nbtime 77\n"}};
    EXPECT_EQ(queries.bytes(SystemKey::TaskSizes, std::as_writable_bytes(std::span(sizes))), 16U);
    EXPECT_EQ(sizes, (std::array{20 * page, 300 * page}));
    EXPECT_EQ(queries.bytes(SystemKey::BootTime, bootTime), 8U);
    EXPECT_TRUE(boot[0] == 77 && boot[1] == 0);
    system.files = {{"/proc/self/statm", "300\n"}, {"/proc/stat", "btime 4000000000\n"}};
    EXPECT_FALSE(queries.bytes(SystemKey::TaskSizes, {}));
    EXPECT_EQ(queries.bytes(SystemKey::BootTime, bootTime), 8U);
    EXPECT_EQ(boot[0], INT32_MAX);
    EXPECT_EQ(queries.number(SystemKey::BootSeconds), 4000000000U);
}

// Each answer beside a source that it was not taken from.
TEST(SystemQueries, AgreeWithThisMachine) {
    const SystemQueries& queries = SystemQueries::current();
    std::array<std::uint64_t, 2> sizes{};
    ASSERT_EQ(queries.bytes(SystemKey::TaskSizes, std::as_writable_bytes(std::span(sizes))), 16U);
    const auto isNear = [](std::uint64_t size, const char* file, const char* key) {
        const std::uint64_t told = *numberInSystemFile(file, key, 1024);
        return std::max(size, told) - std::min(size, told) < 4U << 20;
    };
    EXPECT_TRUE(isNear(sizes[0], "/proc/self/status", "VmRSS:"));
    EXPECT_TRUE(isNear(sizes[1], "/proc/self/status", "VmSize:"));
    EXPECT_TRUE(isNear(*queries.number(SystemKey::MemorySize), "/proc/meminfo", "MemTotal:"));

    timespec sinceBoot{};
    ::clock_gettime(CLOCK_BOOTTIME, &sinceBoot);
    const auto boot = static_cast<std::int64_t>(*queries.number(SystemKey::BootSeconds));
    EXPECT_LE(std::abs(std::time(nullptr) - sinceBoot.tv_sec - boot), 2);

    utsname names{};
    ::uname(&names);
    EXPECT_EQ(queries.text(SystemKey::KernelRelease), names.release);
    EXPECT_GT(*queries.number(SystemKey::ProcessorFrequency), 100'000'000U);
    EXPECT_EQ(queries.number(SystemKey::HasFloatingPoint), 1U);
    const ProcessorIdentity& identity = ProcessorIdentity::current();
    EXPECT_EQ(queries.number(SystemKey::ProcessorType), processorType(identity));
    EXPECT_EQ(queries.number(SystemKey::ProcessorSubtype), processorSubtype(identity));
    EXPECT_EQ(queries.number(SystemKey::ProcessorFamily), processorFamily(identity));
    EXPECT_EQ(queries.number(SystemKey::NativeProcessorType), nativeProcessorType(identity));
    EXPECT_EQ(queries.number(SystemKey::PowerPcFeatures).has_value(),
              identity.kind == Kind::PowerPc);
}

TEST(SystemQueries, CountTheProcessorsOfTheMainThreadForEveryThread) {
    cpu_set_t all;
    ASSERT_EQ(::sched_getaffinity(::getpid(), sizeof all, &all), 0);
    const auto expected = static_cast<std::uint64_t>(CPU_COUNT(&all));
    std::thread([expected] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
        ASSERT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
        EXPECT_EQ(SystemQueries::current().number(SystemKey::ProcessorCount), expected);
    }).join();
}

}  // namespace
}  // namespace veltra
