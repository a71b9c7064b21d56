// SPDX-License-Identifier: MIT
// The guard on a table of its own, so that these tests run under every sanitizer.
#include "veltra/memory/leak_guard.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/memory/detail/leak_guard_history.h"
#include "veltra/memory/leak_report.h"
#include "veltra/memory/testing/arena_heap.h"
#include "veltra/memory/testing/leak_guard_host.h"
#include "veltra/platform/symbol_names.h"
#include "veltra/platform/testing/cancelled_thread.h"

#include <gmock/gmock.h>
#include <malloc.h>

namespace veltra {
namespace {

using detail::LeakRecord;
using detail::LeakTail;
using ::testing::HasSubstr;
using testing::printed;
using ::testing::StartsWith;

// A heap that counts what is out, and refuses one request when it is told to.
std::atomic<long> live{0};
std::atomic<long> untilRefusal{0};
std::atomic<std::size_t> lastRequest{0};

void (*onRefusal)() = [] {};

bool refuses(std::size_t size) noexcept {
    lastRequest = size;
    if (untilRefusal == 0 || --untilRefusal != 0) return false;
    onRefusal();
    return true;
}
template <auto kTake, typename... Sizes>
void* counted(Sizes... sizes) noexcept {
    void* const block = refuses((sizes * ...)) ? nullptr : kTake(sizes...);
    if (block != nullptr) ++live;
    return block;
}
void plainFree(void* block) noexcept {
    if (block != nullptr) --live;
    std::free(block);
}
void* resized(void* block, std::size_t size) noexcept {
    if (block == nullptr) return counted<std::malloc>(size);
    if (size == 0) return plainFree(block), nullptr;
    return refuses(size) ? nullptr : std::realloc(block, size);
}
AllocationZone zone{{counted<std::malloc>, counted<std::calloc>, counted<::memalign>, resized,
                     plainFree, ::malloc_usable_size}};

[[gnu::noinline]] void* take(std::size_t size) {
    void* volatile block = zone.allocate.load()(size);  // no tail call: the frame stays
    return block;
}
void* again(void* block, std::size_t size) {
    return zone.reallocate.load()(block, size);
}
void give(void* block) {
    zone.free.load()(block);
}
long leaking() {
    return QKResetLeakGuardHistory(false);
}
[[gnu::noinline]] void* takeInScope(std::size_t size) {
    const QKLeakGuard guard;
    return take(size);
}

void guarded(const auto& body) {
    testing::guarded(&zone, body);
}
TEST(LeakGuard, ReportsEachLeakWithItsCallersAndTheSum) {
    guarded([](auto&) {
        give(takeInScope(50));
        EXPECT_EQ(printed([] { QKLeakGuard::ResetHistory(true); }),
                  "LLD: no leaking bytes detected\n");
        void* block = nullptr;
        std::thread([&] { block = takeInScope(100); }).join();  // with few frames
        const auto report = printed([] { QKResetLeakGuardHistory(true); });
        std::vector<std::uintptr_t> callers;
        const std::string start = "LLD:         0x";
        for (auto at = report.find(start); at < report.size(); at = report.find(start, at + 1))
            callers.push_back(std::strtoul(&report[at + start.size()], nullptr, 16));
        ASSERT_EQ(callers.size(), 16U);
        EXPECT_NE(callers[2], 0U);
        EXPECT_EQ(callers[15], 0U);
        EXPECT_LT(callers[1] - reinterpret_cast<std::uintptr_t>(&takeInScope), 400U);
        const auto stack = printed([&] {
            QKLeakGuardPrintStack(callers.data(), 16, true);
            QKLeakGuardPrintStack(callers.data(), -1, true);
            QKLeakGuardPrintStack(nullptr, 2, true);
        });
        char line[80];
        std::snprintf(line, sizeof line, "LLD: 100 bytes on address %p:\n", block);
        EXPECT_EQ(report, line + stack + "LLD: a total of 100 bytes leaking detected\n");
    });
}

// All from one place: a loop whose sizes the compiler knows might be unrolled.
[[gnu::noinline]] void leakEach(std::span<const std::size_t> sizes) {
    const QKLeakGuard guard;
    for (const std::size_t size : sizes)
        (void)take(size);
}

void keepText(void* context, const QKLeak* leak) {
    EXPECT_GT(leak->addressCount, 2);
    static_cast<std::vector<std::string>*>(context)->push_back(leak->text);
    give(take(1));  // a visitor may allocate
}

TEST(LeakReport, GroupsEqualStacksAndNamesThem) {
    prepareSymbolNames();  // here: what follows is in a child
    guarded([](auto&) {
        (void)takeInScope(100);
        leakEach(std::vector<std::size_t>(100, 5));
        std::vector<std::string> texts;
        EXPECT_EQ(QKLeakGuardVisitLeaks(keepText, &texts), 600);
        EXPECT_THAT(texts, ::testing::ElementsAre(StartsWith("500 bytes in 100 blocks\n    "),
                                                  StartsWith("100 bytes in 1 block\n    ")));
#ifdef VELTRA_BACKTRACE
        EXPECT_THAT(texts[0], HasSubstr("::leakEach("));
        EXPECT_THAT(texts[1], ::testing::ContainsRegex("::takeInScope\\(.*leak_guard_test.cpp:"));
#endif
        EXPECT_EQ(QKLeakGuardVisitLeaks(nullptr, nullptr), 0);
        std::setvbuf(stdout, nullptr, _IONBF, 0);  // so that every line is a point of cancellation
        EXPECT_EQ(printed([] {
                      EXPECT_TRUE(testing::isCancelledOnlyAfter(
                          [] { EXPECT_EQ(QKLeakGuardPrintLeaks(), 0); }));
                  }),
                  "no leaks\n");
        EXPECT_LE(live, 102);  // the blocks and an array: records are gone
    });
}

TEST(LeakReport, BothFormsPrintUpToTheLimitTheNewestOrTheLargestAndTheSum) {
    guarded([](auto& preferences) {
        preferences.stored = PropertyValue::Dictionary{{"LeakGuardEnabled", "yes"},
                                                       {"LeakGuardPrintLimit", " 2 of"}};
        constexpr std::array<std::size_t, 3> kSizes{1, 20, 300};
        leakEach(kSizes);
        const auto report = printed([] { QKLeakGuard::ResetHistory(true); });
        EXPECT_THAT(report, StartsWith("LLD: 300 bytes on"));
        EXPECT_THAT(report, HasSubstr("LLD: 20 bytes on"));
        EXPECT_THAT(report, HasSubstr("\nLLD: a total of 321 bytes"));
        EXPECT_THAT(report, Not(HasSubstr("LLD: 1 bytes on")));
        leakEach(kSizes);
        (void)takeInScope(1);
        (void)takeInScope(99);
        const auto text = printed([] { EXPECT_EQ(QKLeakGuardPrintLeaks(), 421); });
        EXPECT_THAT(text, StartsWith("leak: 321 bytes in 3 blocks\n"));
        EXPECT_THAT(text, Not(HasSubstr("1 byte in")));
        EXPECT_THAT(text, ::testing::EndsWith("\n3 leaks, 421 bytes in 5 blocks\n"));
    });
}

TEST(LeakReport, DoesNotCallWhatItCannotSeeClean) {
    guarded([](auto& preferences) {
        preferences.stored = PropertyValue();
        give(takeInScope(100));
        EXPECT_EQ(lastRequest, 100U) << "nothing is added unless the guard is enabled";
        EXPECT_EQ(QKLeakGuardVisitLeaks(nullptr, nullptr), -1);
        EXPECT_EQ(printed([] {
                      EXPECT_EQ(QKLeakGuardPrintLeaks(), -1);
                      EXPECT_EQ(QKLeakGuard::ResetHistory(true), 0);
                  }),
                  "");
    });
    guarded([](auto&) {
        AllocationZone::install(nullptr);  // the process's, through which nothing passes here
        EXPECT_EQ(QKLeakGuardVisitLeaks(nullptr, nullptr), -1);
    });
}

[[gnu::noinline]] QKLeakGuard* openForCaller() {
    return new QKLeakGuard(nullptr, nullptr, true);
}
template <std::size_t Size>
[[gnu::noinline]] QKLeakGuard* openOrTake(bool isOpening) {
    QKLeakGuard* const scope = isOpening ? QKOpenLeakGuardScope() : nullptr;
    (void)take(Size);
    return scope;
}
[[gnu::noinline]] void sibling(std::size_t size) {
    *static_cast<volatile char*>(take(size)) = 1;
}
[[gnu::noinline]] void recursive(int depth) {
    const QKLeakGuard guard;
    if (depth > 0) recursive(depth - 1);
    give(take(1));
    (void)take(1);
}
// With more frames between scope and block than are kept.
[[gnu::noinline]] void deep(int frames) {
    QKLeakGuard* const scope = frames == 20 ? QKOpenLeakGuardScope() : nullptr;
    frames > 0 ? deep(frames - 1) : sibling(1);
    QKCloseLeakGuardScope(scope);
}

TEST(LeakGuard, RecordsWhatTheScopesFunctionCallsAndNothingElse) {
    guarded([](auto&) {
        QKLeakGuard* scope = openForCaller();
        sibling(3);
        std::thread([&] { delete scope; }).join();
        sibling(1000);
        EXPECT_EQ(leaking(), 3);
        // Functions at one depth, whose scopes outlive them.
        scope = openOrTake<10>(true);
        QKLeakGuard* const other = openOrTake<200>(true);
        sibling(1000);
        deep(25);  // below scopes that do not count
        EXPECT_EQ(leaking(), 211);
        QKCloseLeakGuardScope(scope);
        openOrTake<10>(false);
        openOrTake<200>(false);
        EXPECT_EQ(leaking(), 200);
        QKCloseLeakGuardScope(other);
        for (int i = 0; i < 40; ++i)
            openOrTake<0>(true);
        recursive(0);  // one scope among many that do not count
        EXPECT_EQ(leaking(), 1);
        deep(25);
        EXPECT_EQ(leaking(), 1);
        recursive(100);
        EXPECT_EQ(leaking(), 101);
        const QKLeakGuard guard;
        std::thread([] { sibling(1000); }).join();
        int numbers[] = {2, 1};
        std::qsort(numbers, 2, sizeof(int), [](const void*, const void*) { return sibling(1), 0; });
        EXPECT_LT(leaking() - 1, 2);  // a sanitizer's qsort compares twice
        QKCloseLeakGuardScope(nullptr);
    });
}

TEST(LeakGuard, FollowsThePreferencesOfGroupAndKey) {
    guarded([](auto& preferences) {
        preferences.stored = preferences.stored.settingValueAtPath(
            {"LeakGuard", "song"}, PropertyValue::Dictionary{{"on", 2},
                                                             {"off", 0},
                                                             {"text", "1"},
                                                             {"bad", "x"},
                                                             {"blanks", " \t+7x"},
                                                             {"less", "-2"}});
        const auto isGuarded = [](const char* group, const char* key) {
            const VLString* const texts[] = {VLStringCreateWithCString(group),
                                             VLStringCreateWithCString(key)};
            QKLeakGuard* const heap = QKOpenLeakGuardScopeWithGroupAndKey(texts[0], texts[1]);
            (void)take(10);
            QKCloseLeakGuardScope(heap);
            const bool answer = leaking() == 10;
            const QKLeakGuard guard(texts[0], texts[1]);
            (void)take(10);
            EXPECT_EQ(leaking() == 10, answer);
            return answer;
        };
        for (const char* key : {"on", "blanks", "less"})
            EXPECT_TRUE(isGuarded("song", key) && !isGuarded("?", key) && !isGuarded(nullptr, key));
        for (const char* key : {"off", "?", "bad", static_cast<const char*>(nullptr)})
            EXPECT_FALSE(isGuarded("song", key));
        EXPECT_TRUE(isGuarded(nullptr, nullptr));

        preferences.synchronised = 0;
        EXPECT_TRUE(isGuarded("song", "text"));
        EXPECT_EQ(preferences.synchronised, 1);
        const PropertyValue song = preferences.stored.valueAtPath({"LeakGuard", "song"});
        const auto numbers = [&song](auto... keys) {
            return std::vector{song[keys].asInteger()...};
        };
        EXPECT_EQ(numbers("on", "off", "text", "bad", "blanks", "less"),
                  (std::vector<std::int64_t>{2, 0, 1, 0, 7, -2}));

        const VLString* const group = VLStringCreateWithCString("song");
        const VLString* const on = VLStringCreateWithCString("on");
        QKOverrideLeakGuardPreference(group, on, 0);
        QKOverrideLeakGuardPreference(group, nullptr, 1);
        QKLeakGuard::OverridePreference(on, on, 4000000000U);
        EXPECT_FALSE(isGuarded("song", "on"));
        EXPECT_TRUE(isGuarded("on", "on"));
        EXPECT_EQ(preferences.stored.valueAtPath({"LeakGuard", "song"}), song);
    });
}

TEST(LeakGuard, MakesBlocksLargerByATailAndKeepsTheirContents) {
    guarded([](auto&) {
        const QKLeakGuard guard;
        const auto* block = static_cast<char*>(take(100));
        EXPECT_EQ(lastRequest, sizeof(LeakRecord));
        const auto* tail = block + ::malloc_usable_size(const_cast<char*>(block)) - LeakTail::kSize;
        EXPECT_EQ(std::string(tail, 52),
                  std::string(32, '\0').append("VLLeakDebug").append(9, '\0'));
        using Sizes = std::array<std::size_t, 3>;
        for (const auto& [count, size, asked] :
             {Sizes{1, 10, 98}, Sizes{3, 10, 120}, Sizes{2, 100, 300}, Sizes{7, 0, 89}}) {
            untilRefusal = 1;
            EXPECT_EQ(zone.allocateZeroed.load()(count, size), nullptr);
            EXPECT_EQ(lastRequest, asked);
        }
        errno = 0;
        EXPECT_EQ(take(SIZE_MAX - 87), nullptr);
        EXPECT_EQ(zone.allocateZeroed.load()(SIZE_MAX / 8, 9), nullptr);
        EXPECT_EQ(errno, ENOMEM);
        EXPECT_EQ(leaking(), 100);

        void* moved = again(take(0), 1000);
        std::memset(moved, 7, 1000);
        EXPECT_EQ(again(moved, SIZE_MAX), nullptr);
        untilRefusal = 1;
        EXPECT_EQ(again(moved, 100000), nullptr);
        moved = again(moved, 2000);
        EXPECT_EQ(static_cast<char*>(moved)[999], 7);
        EXPECT_EQ(leaking(), 2000);
    });
}

TEST(LeakGuard, NeitherFailureNorStaleTailsSpoilTheHistory) {
    guarded([](auto&) {
        void* const kept = takeInScope(100);
        untilRefusal = 1;
        EXPECT_EQ(again(kept, 5000), nullptr);
        void* const moved = again(takeInScope(200), 5000);  // outside every scope
        EXPECT_EQ(again(takeInScope(400), 0), nullptr);
        EXPECT_EQ(leaking(), 100);
        EXPECT_EQ(std::string_view(static_cast<char*>(moved), 5000).find("VLLeak"),
                  std::string::npos);
        give(kept);
        give(moved);

        void* const outlived = takeInScope(200);
        EXPECT_EQ(leaking(), 200);
        void* const other = takeInScope(200);  // may get the record that `outlived` still names
        void* const copy = take(200);
        std::memcpy(copy, other, ::malloc_usable_size(other));
        give(copy);
        give(outlived);
        EXPECT_EQ(leaking(), 200);
        give(other);
        auto* const forged = static_cast<char*>(takeInScope(200));
        forged[::malloc_usable_size(forged) - LeakTail::kSize + 52] ^= 1;
        give(forged);
        EXPECT_EQ(leaking(), 200);

        void* const past = takeInScope(300);
        plainFree(past);  // not through the guard
        void* const next = takeInScope(300);
        EXPECT_EQ(leaking(), next == past ? 300 : 600);
        give(next);
        give(nullptr);
        EXPECT_EQ(leaking(), 0);

        void* const reset = takeInScope(400);
        onRefusal = [] { EXPECT_EQ(leaking(), 0); };  // in the middle of reallocating
        untilRefusal = 1;
        EXPECT_EQ(again(reset, 5000), nullptr);
        EXPECT_EQ(leaking(), 0);
        give(reset);
        EXPECT_EQ(leaking(), 0);
        EXPECT_EQ(live, 0);
    });
}

TEST(LeakGuard, EveryFailureOfTheHeapLeavesItWhole) {
    guarded([](auto&) {
        give(takeInScope(1));
        bool wasRefused = true;
        for (long n = 1; wasRefused && !::testing::Test::HasFailure(); n += n < 40 ? 1 : 13) {
            untilRefusal = n;
            QKLeakGuard* const scope = QKOpenLeakGuardScope();
            {
                const QKLeakGuard inner;
                std::vector<void*> blocks(300, nullptr);  // more than the table's first buckets
                for (void*& block : blocks)
                    block = take(40);
                for (void*& block : blocks)
                    if (void* const moved = again(block, 400)) block = moved;
                if (n % 2 != 0) leaking();
                for (void* block : blocks)
                    give(block);
            }
            QKCloseLeakGuardScope(scope);
            wasRefused = untilRefusal == 0;
            untilRefusal = 0;
            EXPECT_EQ(leaking(), 0) << n;
            EXPECT_LE(live, 2) << n;  // the arrays of buckets and of scopes
        }
    });
}

TEST(LeakGuard, StaysWholeAmongThreadsAndForks) {
    static AllocationZone arena{testing::kArenaHeap};
    testing::guarded(&arena, [](auto&) {
        { const QKLeakGuard first; }  // wraps the entries
        testing::allocateAmongThreadsAndForks(arena.entries());
        EXPECT_LE(testing::ArenaHeap::live, 2);  // the arrays of buckets and of scopes
    });
}

}  // namespace
}  // namespace veltra
