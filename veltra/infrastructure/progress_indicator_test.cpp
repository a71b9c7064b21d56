// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/progress_indicator.h"

#include "veltra/base/string_object_text.h"
#include "veltra/platform/testing/manual_run_loop.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

// Writes down every call: "+" acquire, "-" release, a value, or a text.
std::string calls;
std::function<void()> react;  // called once, in the next callback

void note(const std::string& call) {
    calls += call + ' ';
    if (const auto reaction = std::exchange(react, nullptr)) reaction();
}
void* handleOf(char name) {
    static std::array<char, 128> handles;
    return &handles[static_cast<unsigned char>(name)];
}
void* acquireA(const VLString* title, const void* identifier) {
    note("+a:" + textOf(title).value_or("-") +
         (identifier == kVLProgressIndicatorEmptyID ? ":empty" : ""));
    return handleOf('a');
}
void* acquireB(const VLString* /*title*/, const void* /*identifier*/) {
    note("+b");
    return handleOf('b');
}
void releaseHandle(void* handle) {
    note(handle == handleOf('a') ? "-a" : "-b");
}
std::int32_t setValue(void* /*handle*/, double value) {
    note(std::isnan(value) ? "nan" : std::to_string(static_cast<int>(value)));
    return static_cast<std::int32_t>(-value);
}
void setText(void* /*handle*/, const VLString* text) {
    note(textOf(text).value_or("null"));
}

constexpr VLProgressIndicatorService kA{acquireA, releaseHandle, setValue, setText};
constexpr VLProgressIndicatorService kB{acquireB, releaseHandle, nullptr, nullptr};

class ProgressIndicatorTest : public ::testing::Test {
protected:
    ProgressIndicatorTest() { calls.clear(); }
    ~ProgressIndicatorTest() override {
        VLProvideProgressIndicatorService(nullptr);
        VLStringRelease(one);
        VLStringRelease(two);
    }
    static std::uint32_t references(const VLString* text) { return text->references.load(); }

    testing::ManualRunLoop loop;
    const VLString* one = VLStringCreateWithCString("one");
    const VLString* two = VLStringCreateWithCString("two");
};

TEST_F(ProgressIndicatorTest, LivesQuietlyWithoutAServiceAndKeepsItsTexts) {
    auto* const record = VLAcquirePostedProgressIndicator(one, nullptr);
    ASSERT_NE(record, nullptr);
    EXPECT_FALSE(loop.nextDeadline());
    EXPECT_EQ(references(one), 2U);
    EXPECT_EQ(VLSetProgressIndicatorValue(record, 5.0), 0);
    for (int round = 0; round < 2; ++round)
        VLSetProgressIndicatorInfoText(record, two);
    EXPECT_EQ(references(two), 2U);
    VLSetProgressIndicatorInfoText(record, one);
    EXPECT_EQ(references(two), 1U);
    VLPostProgressIndicatorInfoText(record, two);
    VLReleaseProgressIndicator(record);
    EXPECT_EQ(references(one), 1U);
    EXPECT_EQ(references(two), 1U);
    EXPECT_EQ(calls, "");
}

TEST_F(ProgressIndicatorTest, KeepsTheCallbacksItWasAcquiredWith) {
    VLProvideProgressIndicatorService(&kA);
    auto* const first = VLAcquireProgressIndicator(one, kVLProgressIndicatorEmptyID);
    VLProvideProgressIndicatorService(&kB);
    auto* const second = VLAcquireProgressIndicator(nullptr, nullptr);
    VLProvideProgressIndicatorService(nullptr);
    auto* const third = VLAcquireProgressIndicator(nullptr, nullptr);
    EXPECT_EQ(VLSetProgressIndicatorValue(first, 7.0), -7);
    for (auto* const record : {first, second, third})
        VLSetProgressIndicatorInfoText(record, two);
    VLSetProgressIndicatorInfoText(first, nullptr);
    EXPECT_EQ(VLSetProgressIndicatorValue(second, 7.0), 0);
    for (auto* const record : {first, second, third})
        VLReleaseProgressIndicator(record);
    EXPECT_EQ(calls, "+a:one:empty +b 7 two null -a -b ");
}

TEST_F(ProgressIndicatorTest, AHalfServiceIsNone) {
    VLProgressIndicatorService noAcquire = kA;
    noAcquire.acquire = nullptr;
    VLProgressIndicatorService noRelease = kA;
    noRelease.release = nullptr;
    for (const auto* half : {&noAcquire, &noRelease}) {
        VLProvideProgressIndicatorService(&kA);
        VLProvideProgressIndicatorService(half);
        auto* const record = VLAcquireProgressIndicator(one, nullptr);
        EXPECT_EQ(VLSetProgressIndicatorValue(record, 1.0), 0);
        VLReleaseProgressIndicator(record);
    }
    EXPECT_EQ(calls, "");
}

TEST_F(ProgressIndicatorTest, NullIsTakenEverywhere) {
    EXPECT_EQ(VLSetProgressIndicatorValue(nullptr, 1.0), 0);
    VLSetProgressIndicatorInfoText(nullptr, one);
    VLPostProgressIndicatorValue(nullptr, 1.0);
    VLPostProgressIndicatorInfoText(nullptr, one);
    EXPECT_FALSE(VLDeliverProgressIndicatorUpdates(nullptr));
    EXPECT_FALSE(VLProgressIndicatorIsCancelled(nullptr));
    VLReleaseProgressIndicator(nullptr);
    VLProvideProgressIndicatorService(&kA);
    loop.clocks.error = 5;  // no timer, so the host never hears of the indicator
    EXPECT_EQ(VLAcquirePostedProgressIndicator(one, nullptr), nullptr);
    loop.clocks.error = 0;
    EXPECT_EQ(references(one), 1U);
    EXPECT_EQ(calls, "");
}

TEST_F(ProgressIndicatorTest, CallbacksMayReplaceTheServiceAndReleaseIndicators) {
    VLProvideProgressIndicatorService(&kA);
    auto* const other = VLAcquireProgressIndicator(nullptr, nullptr);
    auto* const record = VLAcquirePostedProgressIndicator(nullptr, nullptr);
    react = [other] {
        VLProvideProgressIndicatorService(&kB);
        VLReleaseProgressIndicator(other);
        VLReleaseProgressIndicator(VLAcquireProgressIndicator(nullptr, nullptr));
    };
    VLSetProgressIndicatorValue(record, 1.0);
    react = [record] { VLReleaseProgressIndicator(record); };  // its own
    VLPostProgressIndicatorValue(record, 2.0);
    VLPostProgressIndicatorInfoText(record, one);
    loop.advance(1.0);
    EXPECT_EQ(calls, "+a:- +a:- 1 -a +b -b 2 one -a ");

    VLProvideProgressIndicatorService(&kA);
    auto* const last = VLAcquireProgressIndicator(nullptr, nullptr);
    react = [last] { VLReleaseProgressIndicator(last); };
    VLSetProgressIndicatorInfoText(last, two);
    EXPECT_EQ(references(two), 1U);
}

TEST_F(ProgressIndicatorTest, PostsAreDeliveredOnceNewestFirstAndNotAfterTheRelease) {
    VLProvideProgressIndicatorService(&kA);
    auto* const record = VLAcquirePostedProgressIndicator(nullptr, nullptr);
    calls.clear();
    const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
    VLPostProgressIndicatorInfoText(record, one);
    VLPostProgressIndicatorInfoText(record, two);
    VLPostProgressIndicatorValue(record, 1.0);
    VLPostProgressIndicatorValue(record, 2.0);
    EXPECT_EQ(references(one), 1U);
    loop.advance(0.5);
    EXPECT_EQ(std::exchange(calls, ""), "2 two ");

    VLPostProgressIndicatorInfoText(record, nullptr);  // a text like any other
    VLPostProgressIndicatorValue(record, std::numeric_limits<double>::quiet_NaN());
    loop.advance(0.5);
    EXPECT_EQ(std::exchange(calls, ""), "nan null ");

    VLPostProgressIndicatorValue(record, 3.0);
    VLPostProgressIndicatorInfoText(record, one);
    VLSetProgressIndicatorValue(record, 4.0);  // came later, so these stay
    VLSetProgressIndicatorInfoText(record, two);
    loop.advance(0.5);
    EXPECT_EQ(std::exchange(calls, ""), "4 two ");

    // A post that comes while the one before is handed over waits for the next turn.
    VLPostProgressIndicatorInfoText(record, one);
    react = [this, record] { VLPostProgressIndicatorInfoText(record, two); };
    loop.advance(0.5);
    EXPECT_EQ(std::exchange(calls, ""), "one two ");

    VLPostProgressIndicatorValue(record, 5.0);
    VLReleaseProgressIndicator(record);
    loop.advance(1.0);
    EXPECT_EQ(calls, "5 -a ");
    EXPECT_EQ(references(one) + references(two), 2U);
}

TEST_F(ProgressIndicatorTest, DeliversByHandAtMostOnceInASixtieth) {
    VLProvideProgressIndicatorService(&kA);
    auto* const record = VLAcquireProgressIndicator(nullptr, nullptr);
    EXPECT_FALSE(VLDeliverProgressIndicatorUpdates(record));
    int deliveries = 0;
    for (int millisecond = 0; millisecond < 1000; ++millisecond) {
        VLPostProgressIndicatorValue(record, millisecond);
        if (VLDeliverProgressIndicatorUpdates(record)) ++deliveries;
        loop.clocks.now += milliseconds(1);
    }
    EXPECT_EQ(deliveries, 60);
    VLReleaseProgressIndicator(record);
    EXPECT_TRUE(calls.ends_with(" 999 -a "));  // the last one is not lost
}

TEST_F(ProgressIndicatorTest, CancelsTheLivingIndicatorsOfAHandle) {
    VLProvideProgressIndicatorService(&kA);
    auto* const first = VLAcquireProgressIndicator(nullptr, nullptr);
    auto* const second = VLAcquireProgressIndicator(nullptr, nullptr);
    VLProvideProgressIndicatorService(&kB);
    auto* const other = VLAcquireProgressIndicator(nullptr, nullptr);
    VLProvideProgressIndicatorService(nullptr);
    auto* const none = VLAcquireProgressIndicator(nullptr, nullptr);
    const auto cancelled = [&] {
        std::string marks;
        for (auto* const record : {first, second, other, none})
            marks += VLProgressIndicatorIsCancelled(record) ? 'x' : '-';
        return marks;
    };
    VLCancelProgressIndicator(nullptr);
    EXPECT_EQ(cancelled(), "----");
    VLCancelProgressIndicator(handleOf('a'));
    EXPECT_EQ(cancelled(), "xx--");
    for (auto* const record : {second, none, first})  // from the middle, the ends of the list
        VLReleaseProgressIndicator(record);
    VLCancelProgressIndicator(handleOf('a'));
    EXPECT_FALSE(VLProgressIndicatorIsCancelled(other));
    VLCancelProgressIndicator(handleOf('b'));
    EXPECT_TRUE(VLProgressIndicatorIsCancelled(other));
    VLReleaseProgressIndicator(other);
}

std::atomic<std::int64_t> sum{0};
std::int32_t addValue(void* /*handle*/, double value) {
    sum.fetch_add(static_cast<std::int64_t>(value), std::memory_order_relaxed);
    return 1;
}
std::vector<double> values;
std::vector<std::string> texts;
std::int32_t keepValue(void* /*handle*/, double value) {
    values.push_back(value);
    return 0;
}
void keepText(void* /*handle*/, const VLString* text) {
    texts.push_back(textOf(text).value_or(""));
}

TEST_F(ProgressIndicatorTest, FourThreadsSetValuesWhileOthersComeAndGo) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20'000;
    VLProgressIndicatorService adding = kB;
    adding.setValue = addValue;
    adding.acquire = [](const VLString*, const void*) { return handleOf('x'); };
    adding.release = [](void*) {};
    VLProvideProgressIndicatorService(&adding);
    auto* const shared = VLAcquireProgressIndicator(one, nullptr);
    sum = 0;
    const auto work = [&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            VLSetProgressIndicatorValue(shared, 1.0);
            if (round % 64 != 0) continue;
            auto* const own = VLAcquireProgressIndicator(one, nullptr);
            if (thread == 0) VLProvideProgressIndicatorService(&adding);
            VLCancelProgressIndicator(handleOf('x'));
            EXPECT_TRUE(VLProgressIndicatorIsCancelled(own));
            VLReleaseProgressIndicator(own);
        }
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(work, thread);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sum, kThreads * kRounds);
    VLReleaseProgressIndicator(shared);
    EXPECT_EQ(references(one), 1U);
}

TEST_F(ProgressIndicatorTest, FourThreadsPostAndTheHostGetsSixtyASecondAndTheLastOfEach) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20'000;
    VLProgressIndicatorService keeping = kA;
    keeping.setValue = keepValue;
    keeping.setInfoText = keepText;
    VLProvideProgressIndicatorService(&keeping);
    auto* const record = VLAcquirePostedProgressIndicator(nullptr, nullptr);
    values.clear();
    texts.clear();
    std::atomic<int> running{kThreads};
    const auto work = [&](int thread) {
        for (int round = 1; round <= kRounds; ++round) {
            VLPostProgressIndicatorValue(record, thread * 100'000 + round);
            const VLString* const text =
                VLStringCreateWithCString(std::to_string(thread * 100'000 + round).c_str());
            VLPostProgressIndicatorInfoText(record, text);
            VLStringRelease(text);
        }
        --running;
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(work, thread);
    std::size_t seconds = 0;
    do {
        loop.advance(1.0);
        ++seconds;
        ASSERT_LE(values.size(), 60 * seconds);
        ASSERT_LE(texts.size(), 60 * seconds);
    } while (running != 0);
    for (std::thread& thread : threads)
        thread.join();
    loop.advance(1.0);
    // Of each thread they come in its order, none twice; the last one of all ends a thread.
    std::array<int, kThreads> latest{};
    for (const double value : values) {
        const int number = static_cast<int>(value);
        int& before = latest[static_cast<std::size_t>(number / 100'000)];
        ASSERT_GT(number % 100'000, before);
        before = number % 100'000;
    }
    EXPECT_EQ(static_cast<int>(values.back()) % 100'000, kRounds);
    EXPECT_EQ(std::stoi(texts.back()) % 100'000, kRounds);
    const std::size_t before = values.size();
    VLPostProgressIndicatorValue(record, 7.0);
    VLReleaseProgressIndicator(record);
    ASSERT_EQ(values.size(), before + 1);
    EXPECT_EQ(values.back(), 7.0);
}

}  // namespace
}  // namespace veltra
