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

using Service = const VLProgressIndicatorService*;

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
    VLSetProgressIndicatorInfoText(record, two);
    VLStringRelease(two);  // the record alone keeps it
    VLSetProgressIndicatorInfoText(record, two);
    EXPECT_EQ(references(VLStringRetain(two)), 2U);
    VLSetProgressIndicatorInfoText(record, one);
    EXPECT_EQ(references(two), 1U);
    VLPostProgressIndicatorInfoText(record, two);
    VLReleaseProgressIndicator(record);
    EXPECT_EQ(references(one), 1U);
    EXPECT_EQ(references(two), 1U);
    EXPECT_EQ(calls, "");
}

TEST_F(ProgressIndicatorTest, KeepsTheCallbacksItWasAcquiredWithAndTakesNoHalfService) {
    VLProgressIndicatorService noAcquire = kA;
    noAcquire.acquire = nullptr;
    VLProgressIndicatorService noRelease = kA;
    noRelease.release = nullptr;
    std::vector<VLProgressIndicator*> indicators;
    for (const auto* each : std::array<Service, 6>{&kA, &noAcquire, &kB, &noRelease, &kA}) {
        VLProvideProgressIndicatorService(each);
        indicators.push_back(VLAcquireProgressIndicator(one, kVLProgressIndicatorEmptyID));
    }
    EXPECT_EQ(std::exchange(calls, ""), "+a:one:empty +b +a:one:empty ");
    for (auto* const each : indicators) {
        const std::int32_t result = VLSetProgressIndicatorValue(each, 7.0);
        EXPECT_EQ(result, each == indicators[0] || each == indicators[4] ? -7 : 0);
        VLSetProgressIndicatorInfoText(each, nullptr);
        VLReleaseProgressIndicator(each);
    }
    EXPECT_EQ(calls, "7 null -a -b 7 null -a ");
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
    int deliveries = VLDeliverProgressIndicatorUpdates(record) ? 1000 : 0;  // there is nothing
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
    std::vector<VLProgressIndicator*> indicators;
    for (const auto* each : std::array<Service, 4>{&kA, &kA, &kB}) {
        VLProvideProgressIndicatorService(each);
        indicators.push_back(VLAcquireProgressIndicator(nullptr, nullptr));
    }
    const auto cancelledBy = [&](const void* handle) {
        VLCancelProgressIndicator(handle);
        std::string marks;
        for (auto* const each : indicators)
            marks += VLProgressIndicatorIsCancelled(each) ? 'x' : '-';
        return marks;
    };
    EXPECT_EQ(cancelledBy(nullptr), "----");
    EXPECT_EQ(cancelledBy(handleOf('a')), "xx--");
    for (const std::size_t index : {1U, 3U, 0U}) {  // from the middle and from both ends
        VLReleaseProgressIndicator(indicators[index]);
        indicators[index] = nullptr;
    }
    EXPECT_EQ(cancelledBy(handleOf('a')), "----");
    EXPECT_EQ(cancelledBy(handleOf('b')), "--x-");
    VLReleaseProgressIndicator(indicators[2]);
}

struct Host {
    std::vector<double> values;
    std::vector<std::string> texts;
    std::atomic<std::int64_t> direct{0};  // values below 0
};
Host host;

TEST_F(ProgressIndicatorTest, ManyThreadsAtOnceLoseNothingThatWasLast) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 10'000;
    constexpr int kNext = 100'000;  // from thread to thread
    const VLProgressIndicatorService service{
        [](const VLString*, const void*) { return handleOf('x'); }, [](void*) {},
        [](void*, double value) {
            if (value < 0.0) return static_cast<std::int32_t>(++host.direct > 0);
            host.values.push_back(value);
            return 0;
        },
        [](void*, const VLString* text) { host.texts.push_back(textOf(text).value_or("")); }};
    VLProvideProgressIndicatorService(&service);
    auto* const posted = VLAcquirePostedProgressIndicator(nullptr, nullptr);
    auto* const shared = VLAcquireProgressIndicator(one, nullptr);
    std::atomic<int> running{kThreads};
    const auto work = [&](int thread) {
        for (int number = thread * kNext + 1; number <= thread * kNext + kRounds; ++number) {
            VLSetProgressIndicatorValue(shared, -1.0);
            VLPostProgressIndicatorValue(posted, number);
            const VLString* const text = VLStringCreateWithCString(std::to_string(number).c_str());
            VLPostProgressIndicatorInfoText(posted, text);
            VLStringRelease(text);
            if (number % 64 != 0) continue;
            if (thread == 0) VLProvideProgressIndicatorService(&service);
            auto* const own = VLAcquireProgressIndicator(one, nullptr);
            VLCancelProgressIndicator(handleOf('x'));
            EXPECT_TRUE(VLProgressIndicatorIsCancelled(own));
            VLReleaseProgressIndicator(own);
        }
        --running;
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(work, thread);
    for (std::size_t seconds = 1; running != 0; ++seconds) {
        loop.advance(1.0);
        ASSERT_LE(std::max(host.values.size(), host.texts.size()), 60 * seconds);
    }
    for (std::thread& thread : threads)
        thread.join();
    loop.advance(1.0);
    // Of each thread they come in its order, none twice; the last one of all ends a thread.
    std::array<int, kThreads> before{};
    for (const double value : host.values) {
        const int number = static_cast<int>(value);
        ASSERT_GT(number, std::exchange(before[static_cast<std::size_t>(number / kNext)], number));
    }
    EXPECT_EQ(static_cast<int>(host.values.back()) % kNext, kRounds);
    EXPECT_EQ(std::stoi(host.texts.back()) % kNext, kRounds);
    EXPECT_EQ(host.direct, kThreads * kRounds);
    VLReleaseProgressIndicator(posted);
    VLReleaseProgressIndicator(shared);
    EXPECT_EQ(references(one), 1U);
}

}  // namespace
}  // namespace veltra
