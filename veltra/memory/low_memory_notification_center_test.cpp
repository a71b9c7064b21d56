#include "veltra/memory/low_memory_notification_center.h"

#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/memory/testing/limited_heap.h"
#include "veltra/platform/notification_center.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Center = LowMemoryNotificationCenter;
using testing::FakePreferences;
using testing::LimitedHeap;

constexpr unsigned long kReserve = 50'000;
constexpr unsigned long kThreshold = 20'000;

// What happened, in order: "!" a notification, "a2 " observer a at level 2.
std::string events;

unsigned long hear(void* context, std::uint8_t level, unsigned long size) {
    events += *static_cast<const char*>(context) + std::to_string(level) + " ";
    EXPECT_GE(size, kThreshold);
    return level == 2 ? 1 : 0;
}

char a[] = "a", b[] = "b";

class LowMemoryCenter : public ::testing::Test {
protected:
    LowMemoryCenter() {
        events.clear();
        NotificationCenter::local().addObserver(
            this,
            [](void*, const VLString*, const void* object) {
                EXPECT_EQ(object, nullptr);
                events += "!";
            },
            kLowMemoryNotification, nullptr);
    }
    ~LowMemoryCenter() override {
        for (void* context : {a, b})
            Center::RemoveLMObserver(hear, context);
        Center::ShutdownLMNotificationCenter();
        NotificationCenter::local().removeObserver(this);
        LimitedHeap::reset();
    }
    static void initialise() { ASSERT_EQ(Center::InitializeLMNotificationCenter(), 1); }

    FakePreferences preferences{
        {{"LowMemoryReserve", kReserve}, {"MinAvailMemoryThreshold", kThreshold}}};
};

TEST_F(LowMemoryCenter, IsOffUnlessThePreferencesWantAReserve) {
    const PropertyValue::Dictionary unwanted[] = {
        {},
        {{"LowMemoryReserve", "much"}},
        {{"LowMemoryReserve", 0}},
        {{"LowMemoryReserve", kReserve}, {"MinAvailMemoryThreshold", 0}}};
    for (const auto& values : unwanted) {
        preferences.stored = values;
        EXPECT_EQ(Center::InitializeLMNotificationCenter(), 0);
    }
    LimitedHeap::available = 0;
    EXPECT_EQ(Center::IsLMNotificationCenterInitialized(), 0);
    EXPECT_EQ(Center::CheckPoint(kReserve), 1);
    EXPECT_EQ(Center::PostLMNotification(0, 2, kReserve, true), 1);
    EXPECT_EQ(Center::AddLMObserver(hear, a), 0);
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 0);
    EXPECT_TRUE(Center::EnterCriticalOperation() && Center::LeaveCriticalOperation());
    EXPECT_EQ(Center::CheckMemory(kThreshold), 0);
    preferences.stored = PropertyValue::Dictionary{{"LowMemoryReserve", kReserve}};
    EXPECT_EQ(Center::InitializeLMNotificationCenter(), 0);  // the reserve is not to be had
    LimitedHeap::available = kReserve;
    EXPECT_EQ(Center::InitializeLMNotificationCenter(), 1);
    EXPECT_EQ(Center::CheckMemory(kThreshold), 0);
    EXPECT_EQ(Center::InitializeLMNotificationCenter(), 1);
    EXPECT_EQ(Center::CheckPoint(10), 1);
    EXPECT_EQ(LimitedHeap::lastLarge, 104'857'600U);
    EXPECT_EQ(events, "!!!");
}

TEST_F(LowMemoryCenter, KeepsObserversOncePerPairAndInOrder) {
    initialise();
    EXPECT_EQ(Center::AddLMObserver(nullptr, a), 0);
    EXPECT_EQ(Center::AddLMObserver(hear, a), 1);
    EXPECT_EQ(Center::AddLMObserver(hear, a), 0);
    EXPECT_EQ(Center::AddLMObserver(hear, b), 1);
    EXPECT_EQ(Center::PostLMNotification(1, 2, 0, true), 0);
    EXPECT_EQ(events, "!a1 b1 !a2 b2 ");
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 1);
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 0);
    events.clear();
    EXPECT_EQ(Center::PostLMNotification(256, 256, 0, true), 0);  // eight bits reach an observer
    EXPECT_EQ(Center::PostLMNotification(3, 2, 0, true), 0);
    EXPECT_EQ(Center::PostLMNotification(3, 2, 0, false), 1);
    EXPECT_EQ(events, "!b0 ");
}

TEST_F(LowMemoryCenter, StopsAtTheFirstObserverAfterWhichThereIsRoom) {
    initialise();
    Center::AddLMObserver(hear, a);
    const auto makeRoom = [](void* needed, std::uint8_t, unsigned long) -> unsigned long {
        if (--*static_cast<int*>(needed) == 0) LimitedHeap::available = kThreshold;
        return 0;
    };
    int calls = 2;
    Center::AddLMObserver(makeRoom, &calls);
    Center::AddLMObserver(hear, b);
    LimitedHeap::available = kThreshold - 1;
    EXPECT_EQ(Center::CheckPoint(5), 1);
    EXPECT_EQ(events, "!a0 b0 !a1 ");
    EXPECT_EQ(Center::CheckPoint(5), 1);
    EXPECT_EQ(events, "!a0 b0 !a1 ");
    // Deliberately 1 though there is never room.
    EXPECT_EQ(Center::CheckPoint(kThreshold + 1), 1);
    EXPECT_EQ(events, "!a0 b0 !a1 !a0 b0 !a1 b1 !a2 b2 ");
    Center::RemoveLMObserver(makeRoom, &calls);
}

// An observer that checks for itself is refused the lock: the one way to the reserve.
unsigned long checkAgain(void* result, std::uint8_t, unsigned long size) {
    *static_cast<int*>(result) = Center::CheckPoint(size);
    EXPECT_EQ(Center::AddLMObserver(hear, b), 0);
    EXPECT_EQ(Center::RemoveLMObserver(hear, a), 0);
    return 0;
}

TEST_F(LowMemoryCenter, GivesUpTheReserveInsideACriticalOperationOnly) {
    LimitedHeap::available = kReserve;
    initialise();
    int result = -1;
    Center::AddLMObserver(checkAgain, &result);
    EXPECT_EQ(Center::PostLMNotification(0, 0, 0, true), 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(LimitedHeap::available, 0U);

    EXPECT_TRUE(Center::EnterCriticalOperation());
    Center::PostLMNotification(0, 0, 0, true);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(LimitedHeap::available, kReserve);
    EXPECT_FALSE(Center::EnterCriticalOperation());
    Center::PostLMNotification(0, 0, kReserve + 1, true);
    EXPECT_EQ(result, 0);  // nothing left to give

    LimitedHeap::available = kReserve - 1;
    EXPECT_FALSE(Center::LeaveCriticalOperation());
    LimitedHeap::available = kReserve;
    EXPECT_TRUE(Center::LeaveCriticalOperation());
    EXPECT_EQ(LimitedHeap::available, 0U);
    Center::RemoveLMObserver(checkAgain, &result);
    Center::ShutdownLMNotificationCenter();
    EXPECT_EQ(LimitedHeap::available, kReserve);
}

TEST_F(LowMemoryCenter, NeverLosesOrDoublesTheReserveAmongThreads) {
    LimitedHeap::available = kReserve;
    initialise();
    int results[3] = {};
    std::vector<std::jthread> threads;
    for (int& result : results) {
        Center::AddLMObserver(checkAgain, &result);
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round) {
                Center::EnterCriticalOperation();
                Center::PostLMNotification(0, 0, 0, true);
                Center::LeaveCriticalOperation();
            }
        });
    }
    threads.clear();
    Center::LeaveCriticalOperation();
    EXPECT_EQ(LimitedHeap::available, 0U);
    for (int& result : results)
        Center::RemoveLMObserver(checkAgain, &result);
    Center::ShutdownLMNotificationCenter();
    EXPECT_EQ(LimitedHeap::available, kReserve);
}

// Last: the flag stays for the life of the process.
TEST_F(LowMemoryCenter, RemembersAFailureAtTheLastLevelForEver) {
    initialise();
    const auto fail = [](void*, std::uint8_t, unsigned long) -> unsigned long { return 1; };
    Center::AddLMObserver(fail, nullptr);
    Center::PostLMNotification(0, 9, 0, true);
    EXPECT_TRUE(Center::LeaveCriticalOperation());
    Center::PostLMNotification(10, 10, 0, true);
    EXPECT_FALSE(Center::LeaveCriticalOperation());
    Center::RemoveLMObserver(fail, nullptr);
    EXPECT_FALSE(Center::LeaveCriticalOperation());
}

}  // namespace
}  // namespace veltra
