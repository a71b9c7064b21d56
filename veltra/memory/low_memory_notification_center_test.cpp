// SPDX-License-Identifier: MIT
#include "veltra/memory/low_memory_notification_center.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/memory/testing/limited_heap.h"
#include "veltra/platform/notification_center.h"

namespace veltra {
namespace {

using Center = LowMemoryNotificationCenter;
using testing::LimitedHeap;

constexpr unsigned long kReserve = 50 * testing::kMiB, kThreshold = 20 * testing::kMiB;

std::string events;  // "!" a notification, "a2 " observer a at level 2
char a[] = "a", b[] = "b";

unsigned long hear(void* context, std::uint8_t level, unsigned long size) {
    EXPECT_GE(size, kThreshold);
    events += *static_cast<const char*>(context) + std::to_string(level) + " ";
    return level == 2 ? 1 : 0;
}

class LowMemoryCenter : public ::testing::Test {
protected:
    LowMemoryCenter() {
        const auto note = [](void*, const VLString*, const void*) { events += "!"; };
        NotificationCenter::local().addObserver(this, note, kLowMemoryNotification, nullptr);
        prefer(kReserve);
    }
    ~LowMemoryCenter() override {
        Center::ShutdownLMNotificationCenter();
        NotificationCenter::local().removeObserver(this);
        LimitedHeap::reset();
    }
    void prefer(const PropertyValue& reserve) {
        preferences.stored = PropertyValue::Dictionary{{"LowMemoryReserve", reserve},
                                                       {"MinAvailMemoryThreshold", kThreshold}};
    }
    // What happens during a call that should answer `answer`.
    static std::string eventsOf(int answer, int result) {
        EXPECT_EQ(result, answer);
        return std::exchange(events, "");
    }
    testing::FakePreferences preferences;
};

TEST_F(LowMemoryCenter, IsOffUnlessThePreferencesWantAReserve) {
    LimitedHeap::available = 49;
    for (const PropertyValue& reserve :
         {PropertyValue(), PropertyValue("much"), PropertyValue(0), PropertyValue(kReserve)}) {
        prefer(reserve);
        EXPECT_EQ(Center::InitializeLMNotificationCenter(), 0);
        EXPECT_EQ(Center::IsLMNotificationCenterInitialized(), 0);
    }
    EXPECT_EQ(Center::CheckPoint(kReserve), 1);
    EXPECT_EQ(Center::CheckMemory(kReserve), 0);
    EXPECT_EQ(Center::PostLMNotification(0, 2, 0, true), 1);
    EXPECT_EQ(Center::AddLMObserver(hear, a) + Center::RemoveLMObserver(hear, a), 0);
    EXPECT_TRUE(Center::EnterCriticalOperation() && Center::LeaveCriticalOperation());
    preferences.stored = PropertyValue::Dictionary{{"LowMemoryReserve", 10 * testing::kMiB}};
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(Center::InitializeLMNotificationCenter(), 1);
    EXPECT_EQ(Center::IsLMNotificationCenterInitialized(), 1);
    EXPECT_EQ(eventsOf(1, Center::CheckPoint(10)), "!!!");
    EXPECT_EQ(LimitedHeap::last, 100);
}

TEST_F(LowMemoryCenter, GoesThroughLevelsAndObserversUntilThereIsRoom) {
    int calls = 2;
    const auto makeRoom = [](void* left, std::uint8_t, unsigned long) -> unsigned long {
        return --*static_cast<int*>(left) == 0 && (LimitedHeap::available = 20) != 0;
    };
    Center::InitializeLMNotificationCenter();
    EXPECT_EQ(Center::AddLMObserver(hear, a), 1);
    EXPECT_EQ(Center::AddLMObserver(hear, a), 0);
    EXPECT_EQ(Center::AddLMObserver(makeRoom, &calls) + Center::AddLMObserver(hear, b), 2);
    LimitedHeap::available = 19;
    EXPECT_EQ(eventsOf(1, Center::CheckPoint(5)), "!a0 b0 !a1 ");
    EXPECT_EQ(eventsOf(1, Center::CheckPoint(5)), "");
    // Deliberately 1 though there is never room.
    EXPECT_EQ(eventsOf(1, Center::CheckPoint(kReserve)), "!a0 b0 !a1 b1 !a2 b2 ");
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 1);
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 0);
    EXPECT_EQ(eventsOf(0, Center::PostLMNotification(255, 256, 0, true)), "!b255 !b0 ");
    EXPECT_EQ(eventsOf(0, Center::PostLMNotification(3, 2, 0, true)), "");
    EXPECT_EQ(eventsOf(1, Center::PostLMNotification(3, 2, 0, false)), "");
    EXPECT_EQ(Center::RemoveLMObserver(makeRoom, &calls) + Center::RemoveLMObserver(hear, b), 2);
}

// An observer that checks for itself is refused the lock: the one way to the reserve.
int result = -1;
unsigned long checkAgain(void*, std::uint8_t, unsigned long size) {
    result = Center::CheckPoint(size);
    return static_cast<unsigned long>(Center::AddLMObserver(hear, b));
}

int resultOfPost(unsigned long size) {
    Center::PostLMNotification(0, 0, size, true);
    return result;
}

TEST_F(LowMemoryCenter, SaysInTheLogWhenASizeDoesNotFit) {
    LogWorld world;
    prefer(std::int64_t{1} << 32);
    EXPECT_EQ(Center::InitializeLMNotificationCenter(), 0);
    EXPECT_EQ(world.message(),
              "the preference LowMemoryReserve, 4294967296 bytes, does not fit 32 bits and counts "
              "as 0");
}

TEST_F(LowMemoryCenter, GivesUpTheReserveInsideACriticalOperationAndNeverLosesIt) {
    LimitedHeap::available = 50;
    Center::InitializeLMNotificationCenter();
    EXPECT_TRUE(Center::EnterCriticalOperation());
    EXPECT_EQ(Center::CheckPoint(kThreshold), 1);  // outside of an observer the reserve stays
    EXPECT_EQ(LimitedHeap::available, 0);
    EXPECT_TRUE(Center::LeaveCriticalOperation());
    Center::AddLMObserver(checkAgain, nullptr);
    EXPECT_EQ(resultOfPost(0), 0);
    EXPECT_TRUE(Center::EnterCriticalOperation());
    EXPECT_EQ(resultOfPost(0), 1);
    EXPECT_EQ(LimitedHeap::available, 50);
    EXPECT_FALSE(Center::EnterCriticalOperation());
    EXPECT_EQ(resultOfPost(2 * kReserve), 0);
    for (const int room : {49, 50}) {
        LimitedHeap::available = room;
        EXPECT_EQ(Center::LeaveCriticalOperation(), room == 50);
    }
    const auto work = [] {
        for (int round = 0; round < 50; ++round, Center::LeaveCriticalOperation()) {
            Center::EnterCriticalOperation();
            Center::PostLMNotification(0, 0, 0, true);
        }
    };
    std::thread other(work);
    work();
    other.join();
    Center::LeaveCriticalOperation();
    EXPECT_EQ(LimitedHeap::available, 0);
    Center::RemoveLMObserver(checkAgain, nullptr);
    Center::ShutdownLMNotificationCenter();
    EXPECT_EQ(LimitedHeap::available, 50);
}

// Last: the flag stays for the life of the process.
TEST_F(LowMemoryCenter, RemembersAFailureAtTheLastLevelForEver) {
    Center::InitializeLMNotificationCenter();
    const auto fail = [](void*, std::uint8_t, unsigned long) { return 1UL; };
    Center::AddLMObserver(fail, nullptr);
    Center::PostLMNotification(0, 9, 0, true);
    EXPECT_TRUE(Center::LeaveCriticalOperation());
    Center::PostLMNotification(10, 10, 0, true);
    Center::RemoveLMObserver(fail, nullptr);
    EXPECT_FALSE(Center::LeaveCriticalOperation());
}

}  // namespace
}  // namespace veltra
