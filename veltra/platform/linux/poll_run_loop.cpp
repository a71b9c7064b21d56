// SPDX-License-Identifier: MIT
#include "veltra/platform/poll_run_loop.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/fork_generation.h"
#include "veltra/platform/no_cancellation.h"
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
    std::unique_ptr<PollRunLoop> loop(new (std::nothrow) PollRunLoop);
    if (loop != nullptr && loop->m_waker == nullptr)
        return nullptr;  // half a loop for a thread's life
    return loop;
}

// What stop() wakes the loop with. It outlives the loop while a stop() is under way, which
// therefore never writes to a number that is somebody else's by then.
//
// A forked child shares the parent's descriptor: it forgets the number (closing it could hit a file
// of the host's, which may have closed all that it inherited) and makes a descriptor of its own
// where the loop next waits. Until then the child's stop() wakes nobody. It cannot be missed: it
// sets the flag, then looks at the generation; the loop renews the generation, then looks at the
// flag. All four are sequentially consistent, so one of the two sees the other.
class PollRunLoop::Waker {
public:
    Waker() noexcept : m_generation(forkGeneration()), m_descriptor(open()) {}
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;
    ~Waker() {
        const NoCancellation whileItIsClosed;
        const int descriptor = m_descriptor.load(std::memory_order_relaxed);
        if (descriptor >= 0 && isOurs()) ::close(descriptor);
    }

    // Any thread.
    void wake() const noexcept {
        const bool isRenewed = isOurs();
        const int descriptor = m_descriptor.load(std::memory_order_relaxed);
        const NoCancellation whileItIsWritten;
        // Fails only when the count is full, and then the descriptor is readable already.
        if (isRenewed && descriptor >= 0) static_cast<void>(::eventfd_write(descriptor, 1));
    }

    // The loop's thread only. -1 when the process is out of descriptors.
    int renewed() noexcept {
        if (!isOurs()) {
            m_descriptor.store(open(), std::memory_order_relaxed);
            // With isOurs(); publishes the descriptor.
            m_generation.store(forkGeneration(), std::memory_order_seq_cst);
        }
        return m_descriptor.load(std::memory_order_relaxed);
    }

private:
    static int open() noexcept { return ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); }

    bool isOurs() const noexcept {
        return m_generation.load(std::memory_order_seq_cst) == forkGeneration();  // with renewed()
    }

    std::atomic<std::uint32_t> m_generation;
    std::atomic<int> m_descriptor;
};

std::shared_ptr<PollRunLoop::Waker> PollRunLoop::makeWaker() noexcept {
    return unlessOutOfMemory(nullptr, [] { return std::make_shared<Waker>(); });
}

PollRunLoop::PollRunLoop() noexcept : m_waker(makeWaker()) {}

PollRunLoop::~PollRunLoop() {
    const NoCancellation whileItIsClosed;
    if (ownsTimerDescriptor()) ::close(m_timerDescriptor);
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
    const int stopDescriptor = m_waker != nullptr ? m_waker->renewed() : -1;
    if (takeStop()) return Round::Stopped;
    wait(stopDescriptor, std::clamp(longest, Nanoseconds(), kLongestWait));
    if (takeStop()) return Round::Stopped;
    runDue();  // may delete the loop
    return Round::Done;
}

void PollRunLoop::stop() noexcept {
    const std::shared_ptr<Waker> waker = m_waker;
    // First of all, so that a loop that has drained the descriptor finds it; and the last access to
    // the loop, which may be destroyed from here on.
    m_isStopAsked.store(true, std::memory_order_seq_cst);  // with takeStop()
    if (waker != nullptr) waker->wake();
}

bool PollRunLoop::takeStop() noexcept {
    return m_isStopAsked.exchange(false, std::memory_order_seq_cst);  // with stop()
}

// A thread may be cancelled while it waits.
void PollRunLoop::wait(int stopDescriptor, Nanoseconds longest) const {
    const std::optional<Moment> deadline = nextDeadline();
    if (deadline) longest = std::min(longest, waitUntil(*deadline));
    if (stopDescriptor < 0) longest = std::min(longest, kBlindWait);
    const timespec time = toTimespec(longest);
    pollfd watched{stopDescriptor, POLLIN, 0};
    if (::ppoll(&watched, stopDescriptor < 0 ? 0 : 1, &time, nullptr) <= 0) return;
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(stopDescriptor, &count));
}

int PollRunLoop::descriptor() noexcept {
    if (!ownsTimerDescriptor()) {
        m_timerDescriptor = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
        m_timerGeneration = forkGeneration();
        if (m_timerDescriptor >= 0) armTimer(m_timerDescriptor, nextDeadline());
    }
    return m_timerDescriptor;
}

// An inherited one is the parent's alarm clock: setting it would set the parent's.
bool PollRunLoop::ownsTimerDescriptor() const noexcept {
    return m_timerDescriptor >= 0 && m_timerGeneration == forkGeneration();
}

void PollRunLoop::deadlineChanged(std::optional<Moment> deadline) noexcept {
    if (ownsTimerDescriptor()) armTimer(m_timerDescriptor, deadline);
}

}  // namespace veltra
