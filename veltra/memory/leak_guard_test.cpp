// The guard on a table of its own, so that these tests run under every sanitizer. The guard starts
// once in a process: each test runs in a child.
#include "veltra/memory/leak_guard.h"

#include "veltra/memory/detail/leak_guard_history.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/testing/child_process.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

namespace veltra {
namespace {

// A heap that counts what is out, and refuses one request when it is told to.
std::atomic<long> live{0};
std::atomic<long> untilRefusal{0};
std::atomic<std::size_t> lastRequest{0};

void* counted(void* block) noexcept {
    if (block != nullptr) ++live;
    return block;
}
bool refuses(std::size_t size) noexcept {
    lastRequest = size;
    return untilRefusal > 0 && --untilRefusal == 0;
}
void* plainAllocate(std::size_t size) noexcept {
    return refuses(size) ? nullptr : counted(std::malloc(size));
}
void* plainZeroed(std::size_t count, std::size_t size) noexcept {
    return refuses(count * size) ? nullptr : counted(std::calloc(count, size));
}
void* plainAligned(std::size_t alignment, std::size_t size) noexcept {
    void* block = nullptr;
    if (refuses(size) || ::posix_memalign(&block, alignment, size) != 0) return nullptr;
    return counted(block);
}
void* plainReallocate(void* block, std::size_t size) noexcept {
    if (refuses(size)) return nullptr;
    void* const moved = std::realloc(block, size);
    if (block == nullptr) return counted(moved);
    if (moved == nullptr) --live;
    return moved;
}
void plainFree(void* block) noexcept {
    if (block != nullptr) --live;
    std::free(block);
}
AllocationZone zone{
    {plainAllocate, plainZeroed, plainAligned, plainReallocate, plainFree, ::malloc_usable_size}};

struct FakePreferences : Preferences {
    PropertyValue value(std::string_view key) const noexcept override { return all[key]; }
    bool setValue(std::string_view key, const PropertyValue& value) noexcept override {
        all = all.settingValueAtPath({key}, value);
        return true;
    }
    std::error_code synchronise() noexcept override { return ++synchronised, std::error_code(); }
    std::error_code reload() noexcept override { return {}; }
    PropertyValue all = PropertyValue::Dictionary{{"LeakGuardEnabled", 1}};
    int synchronised = 0;
};
FakePreferences preferences;

[[gnu::noinline]] void* take(std::size_t size) {
    return zone.allocate.load()(size);
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

template <typename Body>
void guarded(Body body) {
    EXPECT_TRUE(testing::holdsInChild([&] {
        AllocationZone::install(&zone);
        Preferences::install(&preferences);
        body();
        return !::testing::Test::HasFailure();
    }));
}

struct Text {
    explicit Text(const char* text) : string(VLStringCreateWithCString(text)) {}
    Text(const Text&) = delete;
    ~Text() { VLStringRelease(string); }
    const VLString* string;
};

[[gnu::noinline]] void* takeInScope(std::size_t size) {
    const QKLeakGuard guard;
    return take(size);
}

std::vector<std::uintptr_t> addressesIn(const std::string& report) {
    std::vector<std::uintptr_t> found;
    constexpr std::string_view kStart = "LLD:         0x";
    for (auto at = report.find(kStart); at != std::string::npos; at = report.find(kStart, at + 1))
        found.push_back(std::strtoul(&report[at + kStart.size()], nullptr, 16));
    return found;
}

std::string printed(void (*body)()) {
    ::testing::internal::CaptureStdout();
    body();
    return ::testing::internal::GetCapturedStdout();
}

TEST(LeakGuard, ReportsEachLeakWithItsCallersAndTheSum) {
    guarded([] {
        static void* block = nullptr;
        const char* const none = "LLD: no leaking bytes detected\n";
        EXPECT_EQ(printed([] { QKLeakGuard::ResetHistory(true); }), none);
        give(takeInScope(50));
        EXPECT_EQ(printed([] { QKLeakGuard::ResetHistory(true); }), none);

        block = takeInScope(100);
        const auto report = printed([] { EXPECT_EQ(QKResetLeakGuardHistory(true), 100); });
        static std::vector<std::uintptr_t> callers;
        callers = addressesIn(report);
        ASSERT_EQ(callers.size(), 16U);
        const auto stack =
            printed([] { QKLeakGuardPrintStack(callers.data(), int(callers.size()), true); });
        char line[80];
        std::snprintf(line, sizeof line, "LLD: 100 bytes on address %p:\n", block);
        EXPECT_EQ(report, line + stack + "LLD: a total of 100 bytes leaking detected\n");
        EXPECT_LT(callers[1] - reinterpret_cast<std::uintptr_t>(&takeInScope), 400U);
        EXPECT_EQ(leaking(), 0);
        give(block);

        const auto lines = printed([] {
            const std::uintptr_t some[] = {0, 0xABC, UINTPTR_MAX};
            QKLeakGuardPrintStack(some, 2, false);
            QKLeakGuardPrintStack(some, -1, false);
            QKLeakGuardPrintStack(nullptr, 2, false);
        });
        EXPECT_EQ(lines, "LLD:         0x00000000 ???\nLLD:         0x00000abc ???\n");
    });
}

TEST(LeakGuard, PrintsTheNewestLeaksUpToTheLimit) {
    guarded([] {
        preferences.all =
            PropertyValue::Dictionary{{"LeakGuardEnabled", "yes"}, {"LeakGuardPrintLimit", 2}};
        void* blocks[] = {takeInScope(1), takeInScope(20), takeInScope(300)};
        const std::string report = printed([] { QKLeakGuard::ResetHistory(true); });
        const auto third = report.find("LLD: 300 bytes");
        const auto second = report.find("LLD: 20 bytes");
        EXPECT_LT(third, second);
        EXPECT_NE(second, std::string::npos);
        EXPECT_EQ(report.find("LLD: 1 bytes"), std::string::npos);
        EXPECT_NE(report.find("LLD: a total of 321 bytes"), std::string::npos);
        for (void* block : blocks)
            give(block);
    });
}

TEST(LeakGuard, TouchesNothingUnlessItIsEnabled) {
    guarded([] {
        preferences.all = PropertyValue();
        void* const block = takeInScope(100);
        EXPECT_EQ(lastRequest, 100U);
        EXPECT_EQ(printed([] { EXPECT_EQ(QKLeakGuard::ResetHistory(true), 0); }), "");
        give(block);
    });
}

[[gnu::noinline]] void* openedForCaller(std::size_t size) {
    static QKLeakGuard* guard = nullptr;
    if (size != 0) {
        guard = new QKLeakGuard(nullptr, nullptr, true);
        return take(size);
    }
    delete guard;
    return nullptr;
}

[[gnu::noinline]] QKLeakGuard* openedAndReturned(void*& block) {
    QKLeakGuard* const scope = QKOpenLeakGuardScope();
    block = take(8);
    return scope;
}

[[gnu::noinline]] void* sibling(std::size_t size) {
    void* const block = take(size);
    *static_cast<volatile char*>(block) = 1;
    return block;
}

[[gnu::noinline]] void* recursive(int depth) {
    const QKLeakGuard guard;
    void* const inner = depth > 0 ? recursive(depth - 1) : nullptr;
    void* const block = take(1);
    std::memcpy(block, "", 1);
    give(inner);
    return block;
}

TEST(LeakGuard, RecordsWhatTheScopesFunctionCallsAndNothingElse) {
    guarded([] {
        std::vector<void*> blocks;
        const auto keep = [&](void* block) { blocks.push_back(block); };
        keep(openedForCaller(3));
        keep(sibling(4));  // this function is the scope
        openedForCaller(0);
        keep(sibling(1000));
        EXPECT_EQ(leaking(), 7);

        void* first = nullptr;
        QKLeakGuard* const gone = openedAndReturned(first);
        keep(first);
        keep(sibling(1000));
        EXPECT_EQ(leaking(), 8);
        QKCloseLeakGuardScope(gone);

        const auto inScope = [&](auto body) {
            const QKLeakGuard guard;
            body();
        };
        inScope([&] { std::thread([&] { keep(take(1000)); }).join(); });
        EXPECT_EQ(leaking(), 0);
        inScope([&] {  // through a frame of the C library
            static void* taken = nullptr;
            int numbers[] = {2, 1};
            std::qsort(numbers, 2, sizeof(int), [](const void*, const void*) {
                if (taken == nullptr) taken = take(16);
                return 0;
            });
            keep(taken);
        });
        EXPECT_EQ(leaking(), 16);
        keep(recursive(100));
        EXPECT_EQ(leaking(), 1);
        QKCloseLeakGuardScope(nullptr);
        for (void* block : blocks)
            give(block);
    });
}

TEST(LeakGuard, FollowsThePreferencesOfGroupAndKey) {
    guarded([] {
        preferences.all = preferences.all.settingValueAtPath(
            {"LeakGuard", "song"},
            PropertyValue::Dictionary{{"on", 2}, {"off", 0}, {"text", "1"}, {"bad", "x"}});
        struct Case {
            const char *group, *key;
            bool isGuarded;
        };
        const Case cases[] = {{"song", "on", true},   {"song", "off", false},
                              {"song", "?", false},   {"song", "bad", false},
                              {"?", "on", false},     {"song", nullptr, false},
                              {nullptr, "on", false}, {nullptr, nullptr, true}};
        const auto isGuarded = [](const char* group, const char* key) {
            const Text groupText(group);
            const Text keyText(key);
            QKLeakGuard* heap =
                QKOpenLeakGuardScopeWithGroupAndKey(groupText.string, keyText.string);
            void* const block = take(10);
            QKCloseLeakGuardScope(heap);
            {
                const QKLeakGuard guard(groupText.string, keyText.string);
                give(take(10));
            }
            const bool answer = leaking() == 10;
            give(block);
            return answer;
        };
        for (const Case& one : cases)
            EXPECT_EQ(isGuarded(one.group, one.key), one.isGuarded) << one.group << one.key;

        preferences.synchronised = 0;
        EXPECT_TRUE(isGuarded("song", "text"));
        const PropertyValue stored = preferences.all.valueAtPath({"LeakGuard", "song"});
        EXPECT_EQ(stored["text"], PropertyValue(1));
        EXPECT_EQ(stored["on"], PropertyValue(2));
        EXPECT_EQ(preferences.synchronised, 1);

        const Text song("song");
        const Text on("on");
        QKOverrideLeakGuardPreference(song.string, on.string, 0);
        QKOverrideLeakGuardPreference(song.string, nullptr, 1);
        EXPECT_FALSE(isGuarded("song", "on"));
        QKLeakGuard::OverridePreference(on.string, on.string, 4000000000U);
        EXPECT_TRUE(isGuarded("on", "on"));
        EXPECT_EQ(preferences.all.valueAtPath({"LeakGuard", "song"}), stored);
    });
}

TEST(LeakGuard, MakesBlocksLargerByATailAndKeepsTheirContents) {
    guarded([] {
        const QKLeakGuard guard;
        void* block = take(100);
        EXPECT_EQ(lastRequest, sizeof(LeakRecord));
        const char* const tail =
            static_cast<char*>(block) + ::malloc_usable_size(block) - LeakTail::kSize;
        EXPECT_EQ(std::string(tail + 32, 20), std::string("VLLeakDebug") + std::string(9, '\0'));
        give(block);
        for (const auto& [count, size, asked] :
             {std::array<std::size_t, 3>{1, 10, 98}, {3, 10, 120}, {2, 100, 300}, {7, 0, 89}}) {
            untilRefusal = 1;
            EXPECT_EQ(zone.allocateZeroed.load()(count, size), nullptr);
            EXPECT_EQ(lastRequest, asked);
        }
        errno = 0;
        EXPECT_EQ(take(SIZE_MAX - 87), nullptr);
        EXPECT_EQ(zone.allocateZeroed.load()(SIZE_MAX / 8, 9), nullptr);
        EXPECT_EQ(errno, ENOMEM);
        EXPECT_EQ(leaking(), 0);

        block = take(0);
        block = again(block, 1000);
        std::memset(block, 7, 1000);
        EXPECT_EQ(again(block, SIZE_MAX), nullptr);
        untilRefusal = 1;
        EXPECT_EQ(again(block, 100000), nullptr);
        block = again(block, 2000);
        EXPECT_EQ(static_cast<char*>(block)[999], 7);
        EXPECT_EQ(leaking(), 2000);
        give(block);
        EXPECT_EQ(leaking(), 0);
    });
}

TEST(LeakGuard, ReallocatingOutsideEveryScopeEndsTheRecord) {
    guarded([] {
        void* const kept = takeInScope(100);
        untilRefusal = 1;
        EXPECT_EQ(again(kept, 5000), nullptr);
        EXPECT_EQ(leaking(), 100);
        void* block = again(takeInScope(100), 5000);
        EXPECT_EQ(leaking(), 0);
        give(block);
        (void)again(takeInScope(100), 0);
        EXPECT_EQ(leaking(), 0);
        give(kept);
        EXPECT_EQ(live, 0);
    });
}

TEST(LeakGuard, StaleTailsTouchNothing) {
    guarded([] {
        void* const outlived = takeInScope(200);
        EXPECT_EQ(leaking(), 200);
        void* const other = takeInScope(200);  // may get the record that `outlived` still names
        void* const copy = take(200);
        const std::size_t size = ::malloc_usable_size(other);
        std::memcpy(copy, other, size);
        give(copy);
        give(outlived);
        EXPECT_EQ(leaking(), 200);
        give(other);

        void* const past = takeInScope(300);
        plainFree(past);  // not through the guard
        void* const next = takeInScope(300);
        EXPECT_EQ(leaking(), next == past ? 300 : 600);
        give(next);
        EXPECT_EQ(leaking(), 0);
        give(nullptr);
        EXPECT_EQ(live, 0);
    });
}

TEST(LeakGuard, EveryFailureOfTheHeapLeavesItWhole) {
    guarded([] {
        const Text text("x");
        give(takeInScope(1));
        bool wasRefused = true;
        for (long n = 1; wasRefused; n += n < 40 ? 1 : 13) {
            const long before = live;
            untilRefusal = n;
            QKLeakGuard* const scope = QKOpenLeakGuardScope();
            {
                const QKLeakGuard inner;
                std::vector<void*> blocks(300, nullptr);
                for (void*& block : blocks)
                    block = take(40);
                QKOverrideLeakGuardPreference(text.string, text.string, 1);
                for (void*& block : blocks)
                    if (void* const moved = again(block, 400)) block = moved;
                if (n % 2 != 0) QKResetLeakGuardHistory(false);
                for (void* block : blocks)
                    give(block);
            }
            QKCloseLeakGuardScope(scope);
            wasRefused = untilRefusal == 0;
            untilRefusal = 0;
            EXPECT_EQ(leaking(), 0) << n;
            // At most the arrays of the table and of the scopes stay.
            EXPECT_LE(live, before + 2) << n;
            if (::testing::Test::HasFailure()) break;
        }
        EXPECT_LE(live, 2);
    });
}

TEST(LeakGuard, StaysWholeAmongThreadsAndForks) {
    guarded([] {
        static std::atomic<bool> stop{false};
        static std::atomic<int> spoilt{0};
        const auto work = [](unsigned seed) {
            std::minstd_rand random(seed);
            struct Block {
                unsigned char* bytes = nullptr;
                std::size_t size = 0;
            };
            std::vector<Block> blocks(32);
            const auto turn = [&] {
                Block& one = blocks[random() % blocks.size()];
                const auto mark = static_cast<unsigned char>(one.size);
                if (one.size > 0 && (one.bytes[0] != mark || one.bytes[one.size - 1] != mark))
                    ++spoilt;
                const std::size_t size = 1 + random() % 3000;
                const unsigned kind = random() % 4;
                if (kind != 0) give(std::exchange(one.bytes, nullptr));
                void* const taken = kind == 0   ? again(one.bytes, size)
                                    : kind == 1 ? take(size)
                                    : kind == 2 ? zone.allocateZeroed.load()(size, 1)
                                                : zone.allocateAligned.load()(64, size);
                one = {static_cast<unsigned char*>(taken), size};
                std::memset(taken, static_cast<unsigned char>(size), size);
            };
            while (!stop) {
                for (int i = 0; i < 20; ++i)
                    turn();
                const QKLeakGuard guard;
                for (int i = 0; i < 20; ++i)
                    turn();
                if (random() % 16 == 0) QKResetLeakGuardHistory(false);
            }
            for (const Block& block : blocks)
                give(block.bytes);
        };
        give(takeInScope(1));
        std::vector<std::jthread> threads;
        for (unsigned seed = 1; seed <= 8; ++seed)
            threads.emplace_back(work, seed);
        for (int i = 0; i < 30; ++i)
            EXPECT_TRUE(testing::holdsInChild([] {
                QKResetLeakGuardHistory(false);
                void* const block = again(takeInScope(70), 80);
                const bool holds = block != nullptr && leaking() == 0;
                give(block);
                return holds;
            }));
        stop = true;
        threads.clear();
        EXPECT_EQ(spoilt, 0);
        EXPECT_EQ(leaking(), 0);
        EXPECT_LE(live, 2);
    });
}

}  // namespace
}  // namespace veltra
