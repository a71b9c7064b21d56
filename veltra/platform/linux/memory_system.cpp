// SPDX-License-Identifier: MIT
#include "veltra/platform/memory_system.h"

#include "veltra/base/immortal.h"
#include "veltra/platform/linux/descriptor.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr Nanoseconds kSecond = milliseconds(1000);

// Tells when threads have waited for a twentieth of two seconds. Windows of two seconds are the
// only ones that the kernel gives to everybody.
constexpr char kTrigger[] = "some 100000 2000000";

std::uint64_t limitFrom(rlim_t limit) noexcept {
    return limit == RLIM_INFINITY ? MemorySystem::kNoLimit : std::uint64_t{limit};
}

// `event` at `descriptor` makes `all` readable.
bool watch(int all, int descriptor, std::uint32_t event) noexcept {
    epoll_event wanted{};
    wanted.events = event;
    return ::epoll_ctl(all, EPOLL_CTL_ADD, descriptor, &wanted) == 0;
}

class LinuxMemorySystem final : public MemorySystem {
public:
    std::ptrdiff_t read(const char* path, std::size_t offset,
                        std::span<char> text) const noexcept override {
        const NoCancellation whileFilesAreRead;
        const Descriptor file(::open(path, O_RDONLY | O_CLOEXEC));
        if (!file.isOpen()) return -1;
        std::size_t size = 0;
        while (size < text.size()) {
            const ssize_t part = ::pread(file.number(), text.data() + size, text.size() - size,
                                         static_cast<off_t>(offset + size));
            if (part < 0 && errno == EINTR) continue;
            if (part < 0 && size == 0) return -1;
            if (part <= 0) break;
            size += static_cast<std::size_t>(part);
        }
        return static_cast<std::ptrdiff_t>(size);
    }

    Limits addressSpaceLimits() const noexcept override {
        rlimit limit{};
        if (::getrlimit(RLIMIT_AS, &limit) != 0) return {};
        return {limitFrom(limit.rlim_cur), limitFrom(limit.rlim_max)};
    }

    bool setAddressSpaceLimit(std::uint64_t bytes) noexcept override {
        rlimit limit{};
        if (::getrlimit(RLIMIT_AS, &limit) != 0) return false;
        if (bytes >= limitFrom(RLIM_INFINITY - 1) && bytes != kNoLimit) return false;
        limit.rlim_cur = bytes == kNoLimit ? RLIM_INFINITY : static_cast<rlim_t>(bytes);
        return ::setrlimit(RLIMIT_AS, &limit) == 0;
    }

    Events openEvents(const char* pressurePath, Nanoseconds period) noexcept override {
        const NoCancellation whileFilesAreInUse;
        Descriptor all(::epoll_create1(EPOLL_CLOEXEC));
        Descriptor timer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
        const timespec time{static_cast<time_t>(period / kSecond),
                            static_cast<long>((period % kSecond).count())};
        const itimerspec times{time, time};
        if (!all.isOpen() || !timer.isOpen() ||
            ::timerfd_settime(timer.number(), 0, &times, nullptr) != 0 ||
            !watch(all.number(), timer.number(), EPOLLIN))
            return {};
        Descriptor trigger(::open(pressurePath, O_RDWR | O_NONBLOCK | O_CLOEXEC));
        const bool isTriggered = trigger.isOpen() &&
                                 ::write(trigger.number(), kTrigger, sizeof kTrigger) >= 0 &&
                                 watch(all.number(), trigger.number(), EPOLLPRI);
        return {all.release(), timer.release(), isTriggered ? trigger.release() : -1};
    }

    void takeEvents(const Events& events) noexcept override {
        const NoCancellation whileFilesAreInUse;
        std::uint64_t ticks = 0;
        [[maybe_unused]] const ssize_t taken = ::read(events.timer, &ticks, sizeof ticks);
        // A stall is over when it was told.
        epoll_event told{};
        ::epoll_wait(events.all, &told, 1, 0);
    }

    void closeEvents(const Events& events) noexcept override {
        const NoCancellation whileFilesAreInUse;
        for (const int descriptor : {events.all, events.timer, events.trigger})
            Descriptor{descriptor}.close();
    }
};

}  // namespace

MemorySystem& platformMemorySystem() noexcept {
    static const Immortal<LinuxMemorySystem> system;
    return *system;
}

}  // namespace veltra
