// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/time_marker.h"

#include "veltra/platform/clock.h"

namespace veltra {

namespace {

float difference(std::int32_t left, std::int32_t right) noexcept {
    const auto modular = static_cast<std::uint32_t>(left) - static_cast<std::uint32_t>(right);
    return static_cast<float>(static_cast<std::int32_t>(modular));
}

}  // namespace

QkTimeMarker::QkTimeMarker() noexcept {
    setMarker();
}

void QkTimeMarker::setMarker() noexcept {
    m_tLogTime = wallTime();
}

float QkTimeMarker::secondsSinceMarker() const noexcept {
    const LogTime now = wallTime();
    const float seconds = difference(now.seconds, m_tLogTime.seconds);
    const float microseconds = difference(now.microseconds, m_tLogTime.microseconds);
    return static_cast<float>(static_cast<double>(seconds) +
                              static_cast<double>(microseconds) * 0.000001);
}

QkTimeMarker::LogTime QkTimeMarker::wallTime() noexcept {
    const WallTime now = Clocks::current().wall();
    return {static_cast<std::int32_t>(now.seconds), now.nanoseconds / 1000};
}

}  // namespace veltra
