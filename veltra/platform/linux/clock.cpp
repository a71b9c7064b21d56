// SPDX-License-Identifier: MIT
#include "veltra/platform/clock.h"

#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"

#include <cerrno>

#include <time.h>

namespace veltra {

namespace {

class LinuxClocks final : public Clocks {
public:
    ClockReading monotonic() const noexcept override {
        timespec now{};
        if (::clock_gettime(CLOCK_MONOTONIC, &now) != 0) return ClockReading::failed(errno);
        return Moment(Nanoseconds(now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec));
    }

    WallTime wall() const noexcept override {
        timespec now{};
        if (::clock_gettime(CLOCK_REALTIME, &now) != 0) return {};
        return {now.tv_sec, static_cast<std::int32_t>(now.tv_nsec)};
    }
};

}  // namespace

const Clocks& platformClocks() noexcept {
    static const Immortal<LinuxClocks> clocks;
    return *clocks;
}

}  // namespace veltra
