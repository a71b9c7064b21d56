// SPDX-License-Identifier: MIT
#include "veltra/memory/memory_pressure.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/memory/low_memory_notification_center.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/platform/testing/fake_memory_system.h"
#include "veltra/platform/testing/manual_run_loop.h"

namespace veltra {
namespace {

using Center = LowMemoryNotificationCenter;

// A machine of 800 KiB; observers are asked by letter.
class MemoryPressureTest : public ::testing::Test {
protected:
    MemoryPressureTest() {
        preferences.stored =
            PropertyValue::Dictionary{{"LowMemoryReserve", 1000}, {"MinAvailMemoryThreshold", 1}};
        Center::InitializeLMNotificationCenter();
        Center::AddLMObserver(makeRoom, this);
        available(800);
    }
    ~MemoryPressureTest() override {
        Center::RemoveLMObserver(makeRoom, this);
        Center::ShutdownLMNotificationCenter();
    }
    static unsigned long makeRoom(void* context, std::uint8_t level, unsigned long size) {
        auto& self = *static_cast<MemoryPressureTest*>(context);
        self.told += static_cast<char>('0' + level);
        self.missing = size;
        self.available(self.left + self.freed[level]);
        return 0;
    }
    void available(int kibibytes) {
        left = kibibytes;
        system.files["/proc/meminfo"] =
            "MemTotal: 800 kB\nMemAvailable: " + std::to_string(left) + " kB\n";
    }
    // What the observers were told by one call that ends at `level`.
    std::string relieved(MemoryPressure& pressure, int level) {
        told.clear();
        EXPECT_EQ(pressure.relieve(), level);
        EXPECT_EQ(pressure.level(), level);
        return told;
    }

    testing::FakePreferences preferences;
    testing::FakeMemorySystem system;
    testing::ManualClocks clocks;
    std::array<int, 3> freed{0, 0, 0};
    std::string told;
    unsigned long missing = 0;
    int left = 0;
};

TEST_F(MemoryPressureTest, AsksLevelByLevelUntilThereIsRoom) {
    MemoryPressure pressure;
    EXPECT_EQ(relieved(pressure, MemoryPressure::kNone), "");
    available(100);
    EXPECT_EQ(relieved(pressure, MemoryPressure::kNone), "");
    freed = {10, 0, 90};
    available(95);
    EXPECT_EQ(relieved(pressure, MemoryPressure::kNone), "0");
    EXPECT_EQ(missing, 5U * 1024);
    available(0);
    EXPECT_EQ(relieved(pressure, MemoryPressure::kNone), "012");  // 10 KiB, 10, 100
}

TEST_F(MemoryPressureTest, TellsALevelThatStaysOnceASecondAndOneThatComesBackAtOnce) {
    MemoryPressure pressure;
    const struct {
        int nanoseconds, available, level;
        const char* told;
    } steps[] = {{0, 60, 0, "0"},          {0, 60, 0, ""},
                 {999'999'999, 60, 0, ""}, {1, 60, 0, "0"},
                 {0, 10, 2, "12"},         {0, 40, 1, ""},
                 {0, 10, 2, "2"},          {0, 800, MemoryPressure::kNone, ""},
                 {0, 60, 0, "0"}};
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        clocks.now += Nanoseconds(step.nanoseconds);
        available(step.available);
        EXPECT_EQ(relieved(pressure, step.level), step.told);
    }
    Center::ShutdownLMNotificationCenter();
    available(10);
    EXPECT_EQ(relieved(pressure, 2), "");
}

TEST_F(MemoryPressureTest, CountsStallsAndMarksOfTheHostsOwn) {
    const auto levelWith = [this](const char* text, const MemoryPressureMarks& marks = {}) {
        system.files["/proc/pressure/memory"] = text;
        return MemoryPressure(marks).level();
    };
    EXPECT_EQ(levelWith("some avg10=10.00\nfull avg10=5.00\n"), MemoryPressure::kNone);
    EXPECT_EQ(levelWith("some avg10=10.01\nfull avg10=5.00\n"), 0);
    EXPECT_EQ(levelWith("some avg10=99.00\nfull avg10=5.01\n"), 1);
    EXPECT_EQ(levelWith("full avg10=20.01\n"), 2);
    EXPECT_EQ(levelWith("", {.room = {900 * 1024, 801 * 1024, 1}}), 1);
    system.files.clear();  // a system that says nothing
    EXPECT_EQ(levelWith(""), MemoryPressure::kNone);
}

TEST_F(MemoryPressureTest, HasADescriptorForItsLife) {
    {
        MemoryPressure pressure;
        EXPECT_EQ(pressure.descriptor(), 7);
        EXPECT_EQ(system.watched, "/proc/pressure/memory");
        pressure.relieve();
        EXPECT_EQ(system.taken, 1);
    }
    EXPECT_EQ(system.watched, "");
}

TEST_F(MemoryPressureTest, LimitsTheAddressSpaceToTheLeastOfAll) {
    constexpr std::uint64_t kNone = MemorySystem::kNoLimit;
    // In KiB, or kNone: margin, most, the limits before; room, the limit afterwards.
    constexpr std::array<std::uint64_t, 6> kCases[] = {
        {100, kNone, kNone, kNone, 700, 1000},  // what there is, less the margin
        {100, 50, kNone, kNone, 50, 350},       // what the host wants
        {100, kNone, 600, 900, 300, 600},       // a limit that is smaller stays
        {100, kNone, 200, 900, 0, 200},         // also one that is used up
        {100, kNone, 1100, 900, 600, 900},      // no more than the system lets it
        {800, kNone, kNone, kNone, 0, kNone},   // nothing is left
        {9999, kNone, kNone, kNone, 0, kNone},
    };
    const auto bytes = [](std::uint64_t size) { return size == kNone ? kNone : size * 1024; };
    system.files["/proc/self/status"] = "VmSize: 300 kB\n";
    for (const auto& [margin, most, current, hard, room, limit] : kCases) {
        system.limits = {bytes(current), bytes(hard)};
        EXPECT_EQ(limitAddressSpaceToMemory(bytes(margin), bytes(most)), bytes(room));
        EXPECT_EQ(system.limits.current, bytes(limit)) << margin << " " << most << " " << current;
    }
    system.limits = {};
    system.isRefusing = true;
    EXPECT_EQ(limitAddressSpaceToMemory(0), 0U);
    system.isRefusing = false;
    system.files.erase("/proc/meminfo");  // then only the host's own wish counts
    EXPECT_EQ(limitAddressSpaceToMemory(0, 50 * 1024), 50U * 1024);
    system.limits = {};
    EXPECT_EQ(limitAddressSpaceToMemory(), 0U);
    system.files.erase("/proc/self/status");
    EXPECT_EQ(limitAddressSpaceToMemory(0, 1000), 0U);
    EXPECT_EQ(system.limits.current, kNone);
}

}  // namespace
}  // namespace veltra
