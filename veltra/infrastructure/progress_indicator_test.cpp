// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/progress_indicator.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/manual_run_loop.h"

namespace veltra {
namespace {

// Writes down every call: "+" acquire, "-" release, a value, or a text.
std::string calls;
std::function<void()> react;  // called once, in the next callback

void note(const std::string& call) {
    calls += call + ' ';
    if (const auto reaction = std::exchange(react, nullptr)) reaction();
}

using Service = VLProgressIndicatorService;
char handleA, handleB;
constexpr Service kA{[](const VLString* title, const void* identifier) -> void* {
                         note("+a:" + textOf(title).value_or("-") +
                              (identifier == kVLProgressIndicatorEmptyID ? ":empty" : ""));
                         return &handleA;
                     },
                     [](void* handle) { note(handle == &handleA ? "-a" : "-b"); },
                     [](void*, double value) {
                         note(std::isnan(value) ? "nan" : std::to_string(static_cast<int>(value)));
                         return static_cast<std::int32_t>(-value);
                     },
                     [](void*, const VLString* text) { note(textOf(text).value_or("null")); }};
constexpr Service kB{[](const VLString*, const void*) -> void* { return note("+b"), &handleB; },
                     kA.release, nullptr, nullptr};

struct ProgressIndicatorTest : ::testing::Test {
    ProgressIndicatorTest() { calls.clear(); }
    ~ProgressIndicatorTest() override {
        VLProvideProgressIndicatorService(nullptr);
        VLStringRelease(one);
        VLStringRelease(two);
    }
    static std::uint32_t references(const VLString* text) { return text->references.load(); }
    // One of each service.
    std::vector<VLProgressIndicator*> acquire(
        std::initializer_list<const Service*> services) const {
        std::vector<VLProgressIndicator*> indicators;
        for (const Service* each : services) {
            VLProvideProgressIndicatorService(each);
            indicators.push_back(VLAcquireProgressIndicator(one, kVLProgressIndicatorEmptyID));
        }
        return indicators;
    }

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
    EXPECT_EQ(references(one) + references(two), 2U);
    EXPECT_EQ(calls, "");
}

TEST_F(ProgressIndicatorTest, KeepsTheCallbacksItWasAcquiredWithAndTakesNoHalfService) {
    Service noAcquire = kA, noRelease = kA;
    noAcquire.acquire = nullptr;
    noRelease.release = nullptr;
    const auto indicators = acquire({&kA, &noAcquire, &kB, &noRelease, &kA, nullptr});
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

    auto* const last = acquire({&kA})[0];
    react = [last] { VLReleaseProgressIndicator(last); };
    VLSetProgressIndicatorInfoText(last, two);
    EXPECT_EQ(references(two), 1U);
}

TEST_F(ProgressIndicatorTest, PostsAreDeliveredOnceNewestFirstAndNotAfterTheRelease) {
    VLProvideProgressIndicatorService(&kA);
    auto* const record = VLAcquirePostedProgressIndicator(nullptr, nullptr);
    calls.clear();
    const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
    const auto delivered = [this] {
        loop.advance(0.5);
        return std::exchange(calls, "");
    };
    const auto post = [record](double value, const VLString* text) {
        VLPostProgressIndicatorValue(record, value);
        VLPostProgressIndicatorInfoText(record, text);
    };
    post(1.0, one);
    post(2.0, two);
    EXPECT_EQ(references(one), 1U);
    EXPECT_EQ(delivered(), "2 two ");
    post(NAN, nullptr);  // a text like any other
    EXPECT_EQ(delivered(), "nan null ");
    post(3.0, one);
    VLSetProgressIndicatorValue(record, 4.0);  // came later, so these stay
    VLSetProgressIndicatorInfoText(record, two);
    EXPECT_EQ(delivered(), "4 two ");
    // A post that comes while the one before is handed over waits for the next turn.
    VLPostProgressIndicatorInfoText(record, one);
    react = [this, record] { VLPostProgressIndicatorInfoText(record, two); };
    EXPECT_EQ(delivered(), "one two ");
    VLPostProgressIndicatorValue(record, 5.0);
    VLReleaseProgressIndicator(record);
    EXPECT_EQ(delivered(), "5 -a ");
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
    auto indicators = acquire({&kA, &kA, &kB, nullptr});
    const auto cancelledBy = [&](const void* handle) {
        VLCancelProgressIndicator(handle);
        std::string marks;
        for (auto* const each : indicators)
            marks += VLProgressIndicatorIsCancelled(each) ? 'x' : '-';
        return marks;
    };
    EXPECT_EQ(cancelledBy(nullptr), "----");
    EXPECT_EQ(cancelledBy(&handleA), "xx--");
    for (const std::size_t index : {1U, 3U, 0U}) {  // from the middle and from both ends
        VLReleaseProgressIndicator(indicators[index]);
        indicators[index] = nullptr;
    }
    EXPECT_EQ(cancelledBy(&handleA), "----");
    EXPECT_EQ(cancelledBy(&handleB), "--x-");
    VLReleaseProgressIndicator(indicators[2]);
}

struct {
    std::vector<double> values;
    std::vector<std::string> texts;
    std::atomic<std::int64_t> direct{0};  // values below 0
} host;

TEST_F(ProgressIndicatorTest, ManyThreadsAtOnceLoseNothingThatWasLast) {
    constexpr int kThreads = 4, kRounds = 10'000, kNext = 100'000;  // from thread to thread
    const Service service{
        [](const VLString*, const void*) -> void* { return &handleA; }, [](void*) {},
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
            VLCancelProgressIndicator(&handleA);
            EXPECT_TRUE(VLProgressIndicatorIsCancelled(own));
            VLReleaseProgressIndicator(own);
        }
        --running;
    };
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(work, thread);
    for (std::size_t seconds = 1; running != 0; ++seconds) {
        loop.advance(1.0);
        ASSERT_LE(std::max(host.values.size(), host.texts.size()), 60 * seconds);
    }
    threads.clear();
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
