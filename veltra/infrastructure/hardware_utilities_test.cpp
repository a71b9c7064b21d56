// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/hardware_utilities.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/infrastructure/hardware.h"
#include "veltra/infrastructure/hardware_report.h"
#include "veltra/platform/optical_drives.h"
#include "veltra/platform/testing/fake_memory_system.h"
#include "veltra/platform/testing/fake_system_queries.h"

namespace veltra {
namespace {

struct FakeDrives final : testing::InForce<OpticalDrives> {
    std::vector<OpticalDrive> list() noexcept override { return drives; }
    std::vector<OpticalDrive> drives;
};

// Asks through the C functions, which hand on to the class.
struct HardwareUtilities : ::testing::Test {
    ~HardwareUtilities() override { forget(); }
    // What is kept is kept by the instance.
    static void forget() { QKHardwareUtilities::s_class.releaseSharedInstance(); }
    testing::FakeSystemQueries queries;
};

TEST_F(HardwareUtilities, AnswersAreNumbersOfFourOrEightBytesThatSaturate) {
    constexpr std::uint64_t k32 = UINT32_MAX;
    const struct {
        std::uint64_t answer;
        std::uint32_t narrow, megahertz;
        std::int32_t code;
    } kCases[] = {{0, 0, 0, 0},
                  {1'999'999'999, 1'999'999'999, 1999, 1'999'999'999},
                  {0xCEE41549, 0xCEE41549, 3471, static_cast<std::int32_t>(0xCEE41549)},
                  {k32, UINT32_MAX, 4294, -1},
                  {k32 + 1, UINT32_MAX, 4294, 0},
                  {25'276'502'016, UINT32_MAX, 25'276, 0},
                  {UINT64_MAX, UINT32_MAX, UINT32_MAX, 0}};
    constexpr SystemKey kKeys[] = {SystemKey::ProcessorCount,   SystemKey::ProcessorFrequency,
                                   SystemKey::MemorySize,       SystemKey::HasVectorUnit,
                                   SystemKey::HasFloatingPoint, SystemKey::ProcessorType,
                                   SystemKey::ProcessorSubtype, SystemKey::ProcessorFamily};
    const auto expectAnswers = [](const auto& one) {
        forget();
        EXPECT_TRUE(VLHardwareCpuCount() == one.narrow && VLHardwarePhysicalRAM() == one.narrow);
        EXPECT_EQ(VLHardwareCpuClockSpeed(), one.megahertz);
        EXPECT_TRUE(VLHardwareCpuFrequency() == one.answer &&
                    VLHardwarePhysicalRAM64() == one.answer);
        EXPECT_TRUE(VLHardwareMachineCpuType() == one.code &&
                    VLHardwareMachineCpuSubtype() == one.code &&
                    VLHardwareMachineCpuFamily() == one.code);
        EXPECT_TRUE(VLHardwareHasVectorUnit() == (one.answer != 0) &&
                    VLHardwareHasFloatingPoint() == (one.answer != 0));
    };
    for (const auto& one : kCases) {
        SCOPED_TRACE(one.answer);
        for (const SystemKey key : kKeys)
            queries.set(key, one.answer);
        expectAnswers(one);
    }
    for (const std::size_t length : {0U, 3U, 5U, 7U, 9U, 16U}) {
        SCOPED_TRACE(length);
        for (const SystemKey key : kKeys)
            queries.answers[key].assign(length, std::byte{1});
        expectAnswers(kCases[0]);
    }
}

TEST_F(HardwareUtilities, ProcessorsFallIntoSixClasses) {
    using Number = std::optional<std::uint32_t>;
    const std::tuple<Number, Number, Number, Number, std::int32_t> kCases[] = {
        {7, 0x426F69EF, {}, {}, 5},
        {16777223, 0x426F69EF, {}, {}, 5},
        {16777223, 0x73D67300, 400, 0x10, 4},
        {7, 0x12345678, {}, {}, 6},
        {7, {}, {}, {}, 6},
        {18, 0x426F69EF, 313, 0x10, 3},
        {18, {}, 312, 0x10, 2},
        {18, {}, 312, 0xFFFFFFEF, 1},
        {18, {}, {}, 0x30, 2},
        {18, {}, {}, {}, 1},
        {{}, 0x426F69EF, {}, {}, 1},
        {16777234, {}, 0xFFFFFFFF, 0x10, 2},  // a number with its sign
        {0x02000007, 0x426F69EF, {}, {}, 1}};
    for (const auto& [type, family, native, features, expected] : kCases) {
        for (const auto& [key, number] : {std::pair(SystemKey::ProcessorType, type),
                                          {SystemKey::ProcessorFamily, family},
                                          {SystemKey::NativeProcessorType, native},
                                          {SystemKey::PowerPcFeatures, features}})
            if (number) queries.set(key, *number);
        forget();
        EXPECT_EQ(VLHardwareCpuType(), expected);
        queries.answers.clear();
        EXPECT_EQ(VLHardwareCpuType(), expected);  // kept
    }
    EXPECT_EQ(VLHardwareCpuCount(), 0U);  // a failure is not kept
    for (const std::uint32_t count : {4U, 8U}) {
        queries.set(SystemKey::ProcessorCount, count);
        EXPECT_EQ(VLHardwareCpuCount(), 4U);
    }
}

TEST_F(HardwareUtilities, BootTimeNeedsEightBytesAndSizesSixteen) {
    std::uint64_t resident = 7;
    std::uint64_t virtualSize = 7;
    EXPECT_TRUE(VLHardwareBootTime() == -1 && VLHardwareBootTime64() == -1);
    for (std::size_t length = 0; length <= 24; ++length) {
        const std::int32_t expected = length <= 7 ? -1 : 0x12121212;
        queries.answers[SystemKey::BootTime].assign(length, std::byte{0x12});
        EXPECT_TRUE(VLHardwareBootTime() == expected && VLHardwareBootTime64() == expected);
        queries.answers[SystemKey::TaskSizes].assign(length, std::byte{1});
        EXPECT_EQ(VLHardwareGetSizes(&resident, &virtualSize), length == 16);
        const std::uint64_t size = length == 16 ? 0x0101010101010101 : 0;
        EXPECT_TRUE(resident == size && virtualSize == size);
    }
    queries.set(SystemKey::BootSeconds, std::int64_t{4'000'000'000});
    EXPECT_EQ(VLHardwareBootTime64(), 4'000'000'000);
    queries.set(SystemKey::TaskSizes, std::array<std::uint64_t, 2>{20, 300});
    EXPECT_TRUE(VLHardwareGetSizes(&resident, &virtualSize) &&
                VLHardwareGetSizes(nullptr, nullptr));
    EXPECT_TRUE(resident == 20 && virtualSize == 300);
    queries.answers.clear();
    EXPECT_FALSE(VLHardwareGetSizes(&resident, nullptr));
    EXPECT_EQ(resident, 0U);
}

// Counts the names that it is told, and none of them.
struct Listener final : QKHardwareUtilities {
    static SlotClass<> s_class;
    Class& classObject() const noexcept override { return s_class; }
    void _deviceAddedWithName(std::string_view name) override { told += name; }
    std::string told;
};
constinit SlotClass<> Listener::s_class("Listener", &QKHardwareUtilities::s_class,
                                        makeObject<Listener>);

TEST_F(HardwareUtilities, DrivesCountByTheirNameAndAnewAndADerivedClassHasItsOwnInstance) {
    FakeDrives drives;
    const std::pair<const char*, bool> kCases[] = {
        {"IODVDServices", true},  {"IOBDServices", true},   {"IOCDServices", false},  {"", false},
        {"xIOBDServicesx", true}, {"iodvdservices", false}, {"IODVDService s", false}};
    for (const auto& [name, counts] : kCases) {
        drives.drives = {{"sr0", "IOCDServices"}, {"sr1", name}};
        EXPECT_EQ(VLHardwareSystemHasDVDDrive(), counts) << name;
    }
    drives.drives = {{"sr0", "IODVDServices"}, {"sr1", "x"}};
    auto* const listener = QKHardwareUtilities::sharedHardwareUtilities<Listener>();
    EXPECT_FALSE(listener->systemHasDVDDrive());
    EXPECT_EQ(listener->told, "IODVDServicesx");
    Listener::s_class.releaseSharedInstance();
    EXPECT_TRUE(VLHardwareSystemHasDVDDrive());
    drives.drives.clear();
    EXPECT_FALSE(VLHardwareSystemHasDVDDrive());
}

constexpr ReportSection kSession{"session", [](char* text, std::size_t capacity) noexcept {
                                     std::snprintf(text, capacity, "48 tracks");
                                 }};

TEST_F(HardwareUtilities, TheReportTellsLimitsApartAndLeavesOutWhatIsUnknown) {
    testing::FakeMemorySystem system;
    FakeDrives drives;
    const std::string bare = hardwareReport();
    for (const char* unknown : {"memory of the machine", "optical drives"})
        EXPECT_EQ(bare.find(unknown), bare.npos);
    EXPECT_NE(bare.find("\nsystem: Unknown\nprocessors: 0 in use, class 1, no vector unit, "
                        "no floating point\nmemory of the control groups: no limit\n"),
              bare.npos)
        << bare;

    system.files = {{"/proc/meminfo", "MemTotal: 4096 kB\nMemAvailable: 2048 kB\n"},
                    {"/proc/self/cgroup", "0::/a\n"},
                    {"/proc/self/mountinfo", "1 1 0:1 / /cg rw - cgroup2 x rw\n"},
                    {"/cg/a/memory.max", "1048576\n"},
                    {"/cg/a/memory.current", "524288\n"}};
    system.limits.current = 3 << 20U;
    queries.set(SystemKey::ProcessorCount, 2U);
    queries.set(SystemKey::ProcessorFrequency, 1'999'999'999U);
    queries.set(SystemKey::ProcessorType, 7U);
    queries.set(SystemKey::HasVectorUnit, 1U);
    queries.set(SystemKey::HasFloatingPoint, 1U);
    queries.set(SystemKey::TaskSizes, std::array<std::uint64_t, 2>{1 << 20U, 2 << 20U});
    drives.drives = {{"sr0", "IODVDServices"}};
    EXPECT_TRUE(addReportSection(kSession));
    forget();
    const VLString* const report = VLHardwareCreateReport();
    const std::string text = textOf(report).value_or("");
    VLStringRelease(report);
    removeReportSection(kSession);
    for (const char* line :
         {"processors: 2 in use, 1999 MHz, class 6, vector unit\n",
          "memory of the machine: 4.0 MiB, available 2.0 MiB\n",
          "memory of the control groups: limit 1.0 MiB, room 0.5 MiB\n",
          "memory of the process: resident 1.0 MiB, virtual 2.0 MiB, address space 3.0 MiB\n",
          "optical drives: IODVDServices\n", "session: 48 tracks\n"})
        EXPECT_NE(text.find(line), text.npos) << line << text;
}

}  // namespace
}  // namespace veltra
