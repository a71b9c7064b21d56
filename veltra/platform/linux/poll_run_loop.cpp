// SPDX-License-Identifier: MIT
#include "veltra/platform/poll_run_loop.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <memory>
#include <new>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr Nanoseconds kLongestWait = seconds(86'400.0);  // a day fits every timespec
constexpr Nanoseconds kBlindWait = milliseconds(50);     // with nothing to wake by

// Of a time from 0 to kLongestWait.
timespec toTimespec(Nanoseconds wait) noexcept {
    constexpr Nanoseconds kSecond = seconds(1.0);
    timespec time{};
    time.tv_sec = static_cast<time_t>(wait / kSecond);
    time.tv_nsec = static_cast<long>((wait % kSecond).count());
    return time;
}

Nanoseconds waitUntil(Moment deadline) noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (now.hasFailed()) return kBlindWait;
    return std::clamp(deadline - now.moment(), Nanoseconds(), kLongestWait);
}

void armTimer(int descriptor, std::optional<Moment> deadline) noexcept {
    itimerspec time{};  // all zero: never
    if (deadline) time.it_value = toTimespec(std::max(waitUntil(*deadline), Nanoseconds(1)));
    static_cast<void>(::timerfd_settime(descriptor, 0, &time, nullptr));
}

}  // namespace

std::unique_ptr<RunLoop> makePlatformRunLoop() noexcept {
    return std::unique_ptr<RunLoop>(new (std::nothrow) PollRunLoop);
}

PollRunLoop::PollRunLoop() noexcept : m_stopDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PollRunLoop::~PollRunLoop() {
    if (m_stopDescriptor >= 0) ::close(m_stopDescriptor);
    if (m_timerDescriptor >= 0) ::close(m_timerDescriptor);
}

void PollRunLoop::run() {
    const WeakPointer<RunLoop> self(this);
    while (self && round(kLongestWait) != Round::Stopped) {
    }
}

bool PollRunLoop::runFor(Nanoseconds longest) {
    const WeakPointer<RunLoop> self(this);
    const ClockReading start = Clocks::current().monotonic();
    for (ClockReading now = start; !now.hasFailed(); now = Clocks::current().monotonic()) {
        const Nanoseconds left = longest - (now.moment() - start.moment());
        if (round(left) == Round::Stopped) return true;
        if (!self || left <= Nanoseconds()) return false;
    }
    return false;
}

bool PollRunLoop::runOnce(Nanoseconds longest) {
    return round(longest) == Round::Stopped;
}

PollRunLoop::Round PollRunLoop::round(Nanoseconds longest) {
    if (takeStop()) return Round::Stopped;
    wait(std::clamp(longest, Nanoseconds(), kLongestWait));
    if (takeStop()) return Round::Stopped;
    runDue();  // may delete the loop
    return Round::Done;
}

void PollRunLoop::stop() noexcept {
    m_isStopAsked.store(true, std::memory_order_release);  // with takeStop()
    if (m_stopDescriptor < 0) return;
    // The flag is set first: a loop that has drained the descriptor finds it. Fails only when the
    // count is full, and then the descriptor is readable already.
    static_cast<void>(::eventfd_write(m_stopDescriptor, 1));
}

bool PollRunLoop::takeStop() noexcept {
    return m_isStopAsked.exchange(false, std::memory_order_acquire);  // with stop()
}

void PollRunLoop::wait(Nanoseconds longest) const noexcept {
    const std::optional<Moment> deadline = nextDeadline();
    if (deadline) longest = std::min(longest, waitUntil(*deadline));
    if (m_stopDescriptor < 0) longest = std::min(longest, kBlindWait);
    const timespec time = toTimespec(longest);
    pollfd watched{m_stopDescriptor, POLLIN, 0};  // a negative descriptor is passed over
    if (::ppoll(&watched, 1, &time, nullptr) <= 0) return;
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(m_stopDescriptor, &count));
}

int PollRunLoop::descriptor() noexcept {
    if (m_timerDescriptor < 0) {
        m_timerDescriptor = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
        if (m_timerDescriptor >= 0) armTimer(m_timerDescriptor, nextDeadline());
    }
    return m_timerDescriptor;
}

void PollRunLoop::deadlineChanged(std::optional<Moment> deadline) noexcept {
    if (m_timerDescriptor >= 0) armTimer(m_timerDescriptor, deadline);
}

}  // namespace veltra
