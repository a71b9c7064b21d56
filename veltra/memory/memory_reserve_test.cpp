// The reserve on a zone of the test's own.
#include "veltra/memory/memory_reserve.h"

#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/memory/detail/reserve_mode.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/memory/testing/limited_heap.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace veltra {
namespace {

using ::testing::ElementsAre;
using testing::LimitedHeap;

constexpr std::size_t kMiB = LimitedHeap::kMebibyte;
constexpr const char* kStarting = "QKMemReserve: starting in Marquee mode\n";
constexpr const char* kAllocating = "QKMemReserve: allocating in Marquee mode\n";
constexpr const char* kReallocating = "QKMemReserve: reallocating in Marquee mode\n";

class MemoryReserve : public ::testing::Test {
protected:
    MemoryReserve() {
        AllocationZone::install(&zone);
        setOptions(10, 50, 10);
        LimitedHeap::available = 100 * kMiB;
    }
    ~MemoryReserve() override {
        QKMemoryReserveDidLowMemoryLevelChange(1);
        QKMemoryReserveDidProbingFail(1);
        AllocationZone::install(nullptr);
        reserveMode = ReserveMode::Marquee;
        LimitedHeap::reset();
    }

    static void setOptions(long sensible, long block, long finalBlock) {
        QKMemoryReserveSetOption(kMemoryReserveMaxSensibleSize, sensible);
        QKMemoryReserveSetOption(kMemoryReserveBlockSize, block);
        QKMemoryReserveSetOption(kMemoryReserveFinalBlockSize, finalBlock);
    }
    void enter() {
        std::free(QKMemoryReserveEnter(
            [](void* self) {
                static_cast<MemoryReserve*>(self)->levels +=
                    std::to_string(QKMemoryReserveGetLowMemoryLevel());
            },
            this));
    }
    void* take(std::size_t mebibytes) { return zone.allocate.load()(mebibytes * kMiB); }
    void give(void* block) { zone.free.load()(block); }
    static std::size_t left() { return LimitedHeap::available / kMiB; }

    testing::FakePreferences preferences;
    LogWorld world;
    AllocationZone zone{LimitedHeap::entries()};
    std::string levels;  // at each callback
};

// First: the preferences are read once in the life of the process.
TEST_F(MemoryReserve, TakesItsOptionsFromThePreferencesOnce) {
    for (const int index : {-1, 6}) {
        QKMemoryReserveSetOption(index, 5);
        EXPECT_EQ(QKMemoryReserveGetOption(index), 0);
    }
    preferences.stored = PropertyValue::Dictionary{
        {"MemoryReserve",
         PropertyValue::Dictionary{{"BlockSize", 0}, {"MemAvailSize", "300"}, {"Verbose", "?"}}}};
    enter();
    QKMemoryReserveExit();
    EXPECT_EQ(preferences.synchronised, 1);
    const long expected[] = {10, 0, 10, 300, 10, 0};
    for (int index = 0; index < 6; ++index)
        EXPECT_EQ(QKMemoryReserveGetOption(index), expected[index]) << index;
    QKMemoryReserveSetOption(kMemoryReserveBlockSize, -5);
    enter();
    QKMemoryReserveExit();
    EXPECT_EQ(preferences.synchronised, 1);
    EXPECT_EQ(QKMemoryReserveGetOption(kMemoryReserveBlockSize), -5);
    EXPECT_EQ(left(), 100U);
    EXPECT_TRUE(world.lines.empty());
}

TEST_F(MemoryReserve, WithoutABlockSizeOnlyAnswersFiftyZeroBytes) {
    setOptions(10, 0, 10);
    void* block = QKMemoryReserveEnter(nullptr, nullptr);
    EXPECT_EQ(zone.allocate.load(), LimitedHeap::allocate);
    EXPECT_EQ(std::string(static_cast<char*>(block), 50), std::string(50, '\0'));
    EXPECT_EQ(left(), 100U);
    QKMemoryReserveExit();
    EXPECT_EQ(zone.allocate.load(), LimitedHeap::allocate);
    std::free(block);
}

TEST_F(MemoryReserve, GivesUpTheMainReserveThenTheFinalBlockAndComesBack) {
    enter();
    EXPECT_THAT(world.lines, ElementsAre(kStarting, kAllocating));
    EXPECT_EQ(left(), 40U);
    void* first = take(45);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(QKMemoryReserveGetLowMemoryLevel(), 1);
    EXPECT_EQ(take(60), nullptr);  // not sensible: the final block stays
    EXPECT_EQ(levels, "1");
    void* second = take(45);
    EXPECT_EQ(left(), 0U);
    void* third = zone.allocateZeroed.load()(5, kMiB);
    EXPECT_NE(third, nullptr);
    EXPECT_EQ(levels, "12");
    EXPECT_EQ(QKMemoryReserveDidLowMemoryLevelChange(0), 2);
    EXPECT_EQ(QKMemoryReserveDidLowMemoryLevelChange(1), 2);
    EXPECT_EQ(zone.allocateAligned.load()(4096, 6 * kMiB), nullptr);  // all is given up

    // Requests count whether they succeed or not: 60 + 45 + 5 + 6 since the release.
    for (void* block : {first, second, third})
        give(block);
    EXPECT_EQ(levels, "12");
    EXPECT_EQ(world.lines.size(), 2U);
    LimitedHeap::available = 2 * kMiB;
    QKMemoryReserveTryReserveReallocation();
    give(nullptr);  // tries, in vain; what is freed from here on counts
    EXPECT_EQ(world.lines.size(), 3U);
    LimitedHeap::available = 150 * kMiB;
    void* bait = take(11);
    give(take(11));
    EXPECT_EQ(levels, "12");
    EXPECT_EQ(left(), 139U);
    give(bait);
    QKMemoryReserveTryReserveReallocation();
    errno = 7;
    give(nullptr);
    EXPECT_EQ(errno, 7);
    EXPECT_EQ(levels, "120");
    EXPECT_EQ(left(), 100U);  // without the final block
    EXPECT_THAT(world.lines, ElementsAre(kStarting, kAllocating, kReallocating, kReallocating));
    EXPECT_EQ(QKMemoryReserveDidLowMemoryLevelChange(0), 0);
    QKMemoryReserveExit();
    EXPECT_EQ(left(), 150U);
}

TEST_F(MemoryReserve, TakesItselfAgainWhenMoreThanTheSensibleSizeIsFreed) {
    void* kept[] = {take(10), take(1), take(9)};
    enter();
    EXPECT_EQ(left(), 20U);
    void* failed = take(30);
    EXPECT_EQ(levels, "1");
    give(kept[0]);  // 10 MiB: not more
    EXPECT_EQ(levels, "1");
    give(failed);
    EXPECT_EQ(levels, "10");
    EXPECT_EQ(left(), 30U);
    QKMemoryReserveExit();
    give(kept[1]);
    give(kept[2]);
    EXPECT_EQ(left(), 100U);
}

TEST_F(MemoryReserve, SplitsWhatIsNotToBeHadInOnePiece) {
    struct Case {
        std::size_t fragment;
        int requests;  // that are made for the main reserve and the final block
        std::size_t held;
    };
    const Case cases[] = {{50, 2, 60},
                          {49, 4, 60},
                          {13, 1 + 1 + 4 + 1, 50 + 10},
                          {10, 1 + 1 + 1 + 8 + 1, 60},
                          {4, 1 + 1 + 1 + 1 + 16 + 1, 50},
                          {3, 5, 0}};
    for (const Case& one : cases) {
        LimitedHeap::largestFragment = one.fragment * kMiB;
        LimitedHeap::largeRequests = 0;
        enter();
        EXPECT_EQ(LimitedHeap::largeRequests, one.requests) << one.fragment;
        EXPECT_EQ(100 - left(), one.held) << one.fragment;
        QKMemoryReserveExit();
        EXPECT_EQ(left(), 100U);
    }
    // Wrapped all the same, with nothing to release.
    enter();
    EXPECT_NE(zone.allocate.load(), LimitedHeap::allocate);
    EXPECT_EQ(take(4), nullptr);
    EXPECT_EQ(levels, "");
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, CorvidModeTakesOnePieceOrNone) {
    reserveMode = ReserveMode::Corvid;
    enter();
    void* block = take(45);
    QKMemoryReserveTryReserveReallocation();
    give(nullptr);
    EXPECT_EQ(levels, "1");
    give(block);
    QKMemoryReserveTryReserveReallocation();
    give(nullptr);
    EXPECT_EQ(levels, "10");
    constexpr const char* kOnePiece = "QKMemReserve: allocating in Corvid mode\n";
    EXPECT_THAT(world.lines, ElementsAre("QKMemReserve: starting in Corvid mode\n", kOnePiece,
                                         kOnePiece, kOnePiece));
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, NestsAndPutsBackWhatItFound) {
    enter();
    const auto wrapper = zone.allocate.load();
    QKMemoryReserveSetOption(kMemoryReserveBlockSize, 5);
    enter();
    EXPECT_EQ(left(), 40U);
    QKMemoryReserveExit();
    EXPECT_EQ(zone.allocate.load(), wrapper);
    EXPECT_EQ(left(), 40U);
    // Who wrapped the zone later loses the four entries, and keeps the others.
    zone.allocate = +[](std::size_t) noexcept -> void* { return nullptr; };
    zone.reallocate = +[](void*, std::size_t) noexcept -> void* { return nullptr; };
    QKMemoryReserveExit();
    EXPECT_EQ(zone.allocate.load(), LimitedHeap::allocate);
    EXPECT_EQ(zone.allocateZeroed.load(), LimitedHeap::allocateZeroed);
    EXPECT_EQ(zone.allocateAligned.load(), LimitedHeap::allocateAligned);
    EXPECT_EQ(zone.free.load(), LimitedHeap::free);
    EXPECT_NE(zone.reallocate.load(), LimitedHeap::reallocate);
}

TEST_F(MemoryReserve, TellsWhetherMemoryIsToBeHadInFragments) {
    struct Case {
        std::size_t total, fragment;
        int answer, requests;
    };
    const Case cases[] = {{30, 30, 1, 1},
                          {31, 16, 0, 1},
                          {31, 15, 0, 3},
                          {20, 10, 1, 1},
                          {0, 0, 1, 0},
                          {30, 31, 0, 0},
                          {45, 1, 0, 1 + 2 + 3 + 6 + 11 + 22}};
    LimitedHeap::available = 10 * kMiB;
    EXPECT_EQ(QKMemoryReserveTestAvailableMemory(20 * kMiB, kMiB), 1);  // nothing entered
    LimitedHeap::available = 90 * kMiB;
    enter();
    int failures = 0;
    for (const Case& one : cases) {
        LimitedHeap::largeRequests = 0;
        EXPECT_EQ(QKMemoryReserveTestAvailableMemory(one.total * kMiB, one.fragment * kMiB),
                  one.answer)
            << one.total;
        EXPECT_EQ(LimitedHeap::largeRequests, one.requests) << one.total;
        failures += 1 - one.answer;
    }
    LimitedHeap::largestFragment = 8 * kMiB;
    EXPECT_EQ(QKMemoryReserveTestAvailableMemory(30 * kMiB, 7 * kMiB), 1);
    EXPECT_EQ(QKMemoryReserveTestAvailableMemory(30 * kMiB, 8 * kMiB), 0);
    EXPECT_EQ(left(), 30U);
    EXPECT_EQ(levels, "");
    EXPECT_EQ(QKMemoryReserveDidProbingFail(1), failures + 1);
    EXPECT_EQ(QKMemoryReserveDidProbingFail(0), 0);
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, ThreadsThatFailTogetherCostOneReserve) {
    for (int round = 0; round < 50; ++round) {
        LimitedHeap::available = 60 * kMiB;
        levels.clear();
        enter();
        std::vector<void*> blocks(4);
        {
            std::vector<std::jthread> threads;
            for (void*& block : blocks)
                threads.emplace_back([this, &block] { block = take(10); });
        }
        EXPECT_EQ(levels, "1");
        EXPECT_EQ(left(), 10U);
        for (void* block : blocks) {
            EXPECT_NE(block, nullptr);
            give(block);
        }
        QKMemoryReserveExit();
    }
}

TEST_F(MemoryReserve, TheCallbackMayAllocateAndFail) {
    struct Host {
        AllocationZone* zone;
        std::string levels;
    } host{&zone, {}};
    std::free(QKMemoryReserveEnter(
        [](void* context) {
            auto& self = *static_cast<Host*>(context);
            self.levels += std::to_string(QKMemoryReserveGetLowMemoryLevel());
            self.zone->free.load()(self.zone->allocate.load()(9 * kMiB));
        },
        &host));
    LimitedHeap::available = 0;
    LimitedHeap::largestFragment = 5 * kMiB;
    void* block = take(5);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(host.levels, "12");
    give(block);
    QKMemoryReserveExit();
}

}  // namespace
}  // namespace veltra
