// SPDX-License-Identifier: MIT
// The reserve on a zone of the test's own.
#include "veltra/memory/memory_reserve.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/memory/detail/reserve_mode.h"
#include "veltra/memory/detail/zone_notice.h"
#include "veltra/memory/testing/arena_heap.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/memory/testing/limited_heap.h"
#include "veltra/memory/testing/zone_stress.h"
#include "veltra/platform/testing/cancelled_thread.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using detail::ReserveMode;
using detail::reserveMode;
using ::testing::ElementsAre;
using testing::kMiB;
using testing::LimitedHeap;

constexpr const char* kStart = "QKMemReserve: starting in Marquee mode\n";
constexpr const char* kTaken = "QKMemReserve: allocating in Marquee mode\n";
constexpr const char* kTakenAgain = "QKMemReserve: reallocating in Marquee mode\n";

// Enters with 100 MiB in all, a main reserve of 50, a final block of 10 and a sensible size of 10.
class MemoryReserve : public ::testing::Test {
protected:
    MemoryReserve() {
        LimitedHeap::reset();
        LimitedHeap::available = 100;
        AllocationZone::install(&zone);
        setOptions(10, 50, 10);
    }
    ~MemoryReserve() override {
        QKMemoryReserveDidLowMemoryLevelChange(1);
        AllocationZone::install(nullptr);
        reserveMode = ReserveMode::InPieces;
        LimitedHeap::reset();
    }
    static void setOptions(long sensible, long block, long finalBlock) {
        for (const auto& [option, size] : {std::pair(kMemoryReserveMaxSensibleSize, sensible),
                                           {kMemoryReserveBlockSize, block},
                                           {kMemoryReserveFinalBlockSize, finalBlock}})
            QKMemoryReserveSetOption(option, size);
    }
    void enter() {
        const auto note = [](void* context) {
            auto& self = *static_cast<MemoryReserve*>(context);
            const std::string level = std::to_string(QKMemoryReserveGetLowMemoryLevel());
            self.levels += level;
            char report[4096];
            writeReportSections(report, sizeof report);  // in the middle of a malloc
            EXPECT_NE(std::strstr(report, ("memory level: " + level + " of 2\n").c_str()), nullptr);
            if (self.wantedInCallback != 0) self.give(self.take(self.wantedInCallback));
        };
        void* block = QKMemoryReserveEnter(note, this);
        EXPECT_EQ(std::string(static_cast<char*>(block), 50), std::string(50, '\0'));
        std::free(block);
    }
    void* take(std::size_t mebibytes) { return zone.allocate.load()(mebibytes * kMiB); }
    void give(void* block) { zone.free.load()(block); }

    testing::FakePreferences preferences;
    LogWorld world;
    AllocationZone zone{testing::kLimitedHeap};
    std::string levels;  // at each callback
    std::size_t wantedInCallback = 0;
};

// First: the preferences are read once in the life of the process.
TEST_F(MemoryReserve, TakesItsOptionsFromThePreferencesOnceAndIsOffWithoutABlockSize) {
    preferences.stored = PropertyValue::Dictionary{
        {"MemoryReserve",
         PropertyValue::Dictionary{{"BlockSize", 0}, {"MemAvailSize", "300"}, {"Verbose", "?"}}}};
    for (const int index : {-1, 6})
        QKMemoryReserveSetOption(index, 5);
    for (int round = 0; round < 2; ++round) {
        enter();
        EXPECT_EQ(zone.allocate.load(), testing::kLimitedHeap.allocate);
        QKMemoryReserveExit();
    }
    EXPECT_EQ(preferences.synchronised, 1);
    std::vector<long> options;
    for (int index = -1; index <= 6; ++index)
        options.push_back(QKMemoryReserveGetOption(index));
    EXPECT_THAT(options, ElementsAre(0, 10, 0, 10, 300, 10, 0, 0));
    EXPECT_TRUE(world.lines.empty());
}

TEST_F(MemoryReserve, GivesUpTheMainReserveThenTheFinalBlockAndComesBack) {
    enter();
    void* first = take(45);
    EXPECT_EQ(take(60), nullptr);  // not sensible: the final block stays
    EXPECT_EQ(levels, "1");
    void* second = take(45);
    void* third = zone.allocateZeroed.load()(5, kMiB);
    EXPECT_EQ(levels, "12");
    EXPECT_EQ(QKMemoryReserveDidLowMemoryLevelChange(1), 2);
    EXPECT_EQ(zone.allocateAligned.load()(4096, 6 * kMiB), nullptr);  // all is given up
    // Requests count whether they succeed or not: 60 + 45 + 5 + 6 since the release.
    give(first);
    EXPECT_THAT(world.lines, ElementsAre(kStart, kTaken));
    LimitedHeap::largest = 2;
    QKMemoryReserveTryReserveReallocation();
    give(nullptr);  // in vain; what is freed from here on counts
    LimitedHeap::largest = 1000;
    give(third);
    errno = 7;
    give(second);
    EXPECT_EQ(errno, 7);
    EXPECT_EQ(levels, "120");
    EXPECT_EQ(LimitedHeap::available, 50);  // without the final block
    EXPECT_THAT(world.lines, ElementsAre(kStart, kTaken, kTakenAgain, kTakenAgain));
    EXPECT_EQ(QKMemoryReserveDidLowMemoryLevelChange(0), 0);
    QKMemoryReserveExit();
    EXPECT_EQ(LimitedHeap::available, 100);
}

TEST_F(MemoryReserve, TakesItselfAgainWhenMoreThanTheSensibleSizeIsFreed) {
    void* kept[] = {take(10), take(12)};
    reserveMode = ReserveMode::Whole;
    enter();
    void* failed = take(40);
    give(kept[0]);
    EXPECT_EQ(levels, "1");
    give(failed);
    EXPECT_EQ(levels, "10");
    give(kept[1]);
    constexpr const char* kOnePiece = "QKMemReserve: allocating in Corvid mode\n";
    EXPECT_THAT(world.lines,
                ElementsAre("QKMemReserve: starting in Corvid mode\n", kOnePiece, kOnePiece));
    QKMemoryReserveExit();
    EXPECT_EQ(LimitedHeap::available, 100);
}

TEST_F(MemoryReserve, SplitsWhatIsNotToBeHadInOnePieceAndNests) {
    setOptions(99, 48, 3);
    using Case = std::tuple<int, int, int, ReserveMode>;
    constexpr auto kInPieces = ReserveMode::InPieces;
    for (const auto& [largest, requests, left, mode] :
         {Case{48, 2, 49, kInPieces}, Case{47, 4, 49, kInPieces}, Case{12, 7, 49, kInPieces},
          Case{6, 12, 49, kInPieces}, Case{3, 21, 49, kInPieces}, Case{2, 5, 100, kInPieces},
          Case{47, 1, 100, ReserveMode::Whole}}) {
        LimitedHeap::largest = largest;
        LimitedHeap::requests = 0;
        reserveMode = mode;
        enter();
        const auto wrapper = zone.allocate.load();
        enter();
        EXPECT_EQ(LimitedHeap::requests, requests) << largest;
        QKMemoryReserveExit();
        EXPECT_EQ(LimitedHeap::available, left) << largest;
        EXPECT_EQ(take(99), nullptr);
        EXPECT_EQ(levels.empty(), left == 100) << largest;
        levels.clear();
        // Who wrapped the zone meanwhile loses the four entries, and keeps the others.
        EXPECT_EQ(zone.allocate.exchange(nullptr), wrapper);
        zone.reallocate = nullptr;
        QKMemoryReserveExit();
        EXPECT_EQ(zone.allocate.load(), testing::kLimitedHeap.allocate);
        EXPECT_EQ(zone.reallocate.load(), nullptr);
        EXPECT_EQ(LimitedHeap::available, 100);
    }
    LimitedHeap::largest = 1000;
    LimitedHeap::available = 40;
    reserveMode = ReserveMode::InPieces;
    enter();
    EXPECT_EQ(LimitedHeap::available, 40);  // pieces of a failed attempt go back
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, TellsWhetherMemoryIsToBeHadInFragments) {
    using Case = std::array<std::size_t, 4>;
    EXPECT_EQ(QKMemoryReserveTestAvailableMemory(200 * kMiB, kMiB), 1);  // nothing entered
    enter();
    LimitedHeap::largest = 8;
    for (const auto& [total, fragment, answer, requests] :
         {Case{8, 8, 1, 1}, Case{30, 7, 1, 6}, Case{30, 8, 0, 2}, Case{48, 5, 0, 10},
          Case{0, 0, 1, 0}, Case{30, 31, 0, 0}, Case{32, 8, 1, 6}}) {
        LimitedHeap::requests = 0;
        EXPECT_EQ(QKMemoryReserveTestAvailableMemory(total * kMiB, fragment * kMiB), int(answer));
        EXPECT_EQ(LimitedHeap::requests, int(requests)) << total << " " << fragment;
    }
    EXPECT_EQ(LimitedHeap::available, 40);
    EXPECT_EQ(QKMemoryReserveDidProbingFail(1), 3);
    EXPECT_EQ(QKMemoryReserveDidProbingFail(0), 0);
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, ThreadsThatFailTogetherCostOneReserveAndTheCallbackMayFailToo) {
    for (int round = 0; round < 50; ++round) {
        LimitedHeap::available = 60;
        levels.clear();
        enter();
        std::array<void*, 4> blocks{};
        testing::onThreads(4, [&](std::size_t thread) { blocks[thread] = take(10); });
        EXPECT_EQ(levels, "1");
        EXPECT_EQ(LimitedHeap::available, 10);
        LimitedHeap::available = 0;
        wantedInCallback = 12;
        give(take(9));
        EXPECT_EQ(levels, "12");
        wantedInCallback = 0;
        for (void* block : blocks)
            give(block);
        QKMemoryReserveExit();
    }
}

TEST_F(MemoryReserve, SurvivesRequestsThatNoHeapCanServe) {
    enter();
    errno = 0;
    EXPECT_EQ(zone.allocateZeroed.load()(SIZE_MAX / 2 + 2, 2), nullptr);  // 2 in the host's width
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(zone.allocateAligned.load()(SIZE_MAX / 2 + 2, 1), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(levels, "");
    EXPECT_EQ(LimitedHeap::available, 40);
    QKMemoryReserveExit();
}

TEST_F(MemoryReserve, SaysThatItAllocatesBeforeItTakesTheFinalBlock) {
    static const LogWorld* log;
    static std::vector<std::size_t> linesAt;
    log = &world;
    zone.allocate = [](std::size_t size) noexcept {
        linesAt.push_back(log->lines.size());
        return testing::kLimitedHeap.allocate(size);
    };
    enter();
    QKMemoryReserveExit();
    EXPECT_THAT(linesAt, ElementsAre(1, 2));
}

// Fragments of less than a pointer are asked for as they are, unless they then hold no pointer.
TEST_F(MemoryReserve, TestsForFragmentsOfAFewBytes) {
    static std::size_t least, held;
    zone.allocate = [](std::size_t size) noexcept {
        least = std::min(least, size);
        const std::size_t taken = std::max<std::size_t>(size, 16);  // what `held` may claim
        return size > 10 && size < kMiB ? nullptr : testing::kLimitedHeap.allocate(taken);
    };
    zone.size = [](void*) noexcept { return held; };
    enter();
    for (const std::size_t holds : {16U, 3U}) {
        held = holds;
        least = SIZE_MAX;
        EXPECT_EQ(QKMemoryReserveTestAvailableMemory(24, 3), 1);
        EXPECT_EQ(least, 6U);
        EXPECT_EQ(QKMemoryReserveTestAvailableMemory(12, 3), 1);
        EXPECT_EQ(QKMemoryReserveTestAvailableMemory(14, 8), 0);
    }
    QKMemoryReserveExit();
}

TEST(ZoneNotice, NamesWhatIsNotSeenAndWhereItComesFrom) {
    using Coverage = Flags<AllocationZone::Coverage>;
    const std::string all = "allocations of this process do not pass through the framework's zone";
    const std::pair<unsigned, std::string> cases[] = {
        {0, all + " (malloc is from m)"},
        {3, "some " + all + ": the C library's own"},
        {4, "some " + all + ": malloc (from m), operator new (from n)"},
        {1, "some " + all + ": operator new (from n), the C library's own"}};
    std::array<char, 200> text{};
    for (const auto& [coverage, expected] : cases) {
        detail::writeZoneNotice(text, Coverage::fromBits(coverage), "m", "n");
        EXPECT_EQ(text.data(), expected);
    }
}

TEST_F(MemoryReserve, TellsTheLogOnceThatNothingPassesThroughTheZone) {
    AllocationZone::install(nullptr);  // the process's own, which these tests do not go through
    for (int round = 0; round < 2; ++round) {
        enter();
        QKMemoryReserveExit();
    }
    EXPECT_THAT(world.message(), ::testing::StartsWith("allocations of this process do not pass"));
}

TEST_F(MemoryReserve, WritesItsLinesOnAThreadThatIsToBeCancelled) {
    world.whenSending = ::pthread_testcancel;  // as writing is one
    EXPECT_TRUE(testing::isCancelledOnlyAfter([this] { enter(); }));
    EXPECT_EQ(world.lines.size(), 2U);
    QKMemoryReserveExit();
}

AllocationZone shared{testing::kArenaHeap};

TEST_F(MemoryReserve, MayComeAndGoAmongThreadsAndForks) {
    AllocationZone::install(&shared);
    ZoneEntries calls = testing::kArenaHeap;
    calls.allocate = [](std::size_t size) noexcept { return shared.allocate.load()(size); };
    calls.free = [](void* block) noexcept { shared.free.load()(block); };
    EXPECT_EQ(testing::stressReserve(shared, calls), 0);
    EXPECT_GT(QKMemoryReserveDidLowMemoryLevelChange(1), 0);
}

}  // namespace
}  // namespace veltra
