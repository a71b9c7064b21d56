// SPDX-License-Identifier: MIT
// Time as two types that cannot be mixed up: Nanoseconds, how long something takes, and Moment,
// when something happens by the monotonic clock (veltra/platform/clock.h).
//
//   const Moment start = Clocks::current().monotonic().moment();
//   const Moment deadline = start + milliseconds(250);
//   const Nanoseconds left = deadline - start;
//
// Nothing in here overflows: a result beyond either end of the range stays at that end. That is how
// "never" works: a timer of Nanoseconds::longest() is due at Moment::never(). (The durations of the
// standard library overflow, which is undefined behaviour, and so does converting infinity or NaN.)
//
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include "veltra/export.h"

#include <compare>
#include <cstdint>
#include <limits>

namespace veltra {

// A length of time, also a negative one, in whole nanoseconds; at most about 292 years.
class Nanoseconds {
public:
    constexpr Nanoseconds() noexcept = default;  // no time at all

    // A time of `count` nanoseconds.
    constexpr explicit Nanoseconds(std::int64_t count) noexcept : m_count(count) {}

    // The longest that there is.
    static constexpr Nanoseconds longest() noexcept { return Nanoseconds(kMost); }

    // The number of nanoseconds.
    constexpr std::int64_t count() const noexcept { return m_count; }
    // The number of seconds, as near as a double comes.
    constexpr double seconds() const noexcept { return static_cast<double>(m_count) / 1e9; }
    // Rounded up, so that a wait of so many does not end too early.
    constexpr std::int64_t wholeMilliseconds() const noexcept {
        constexpr std::int64_t kMillisecond = 1'000'000;
        return m_count / kMillisecond + (m_count % kMillisecond > 0 ? 1 : 0);
    }

    // The shorter is less, a negative one less than none.
    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 in <=> for a pointer
    friend constexpr auto operator<=>(Nanoseconds left, Nanoseconds right) noexcept = default;

    // The same time with the other sign. That of the lowest number is longest().
    constexpr Nanoseconds operator-() const noexcept {
        return Nanoseconds(m_count == kLeast ? kMost : -m_count);
    }

    // Sum, difference and multiple. Where the true result does not fit, the end of the range that
    // is nearest to it.
    friend constexpr Nanoseconds operator+(Nanoseconds left, Nanoseconds right) noexcept {
        if (right.m_count > 0 && left.m_count > kMost - right.m_count) return Nanoseconds(kMost);
        if (right.m_count < 0 && left.m_count < kLeast - right.m_count) return Nanoseconds(kLeast);
        return Nanoseconds(left.m_count + right.m_count);
    }
    friend constexpr Nanoseconds operator-(Nanoseconds left, Nanoseconds right) noexcept {
        if (right.m_count < 0 && left.m_count > kMost + right.m_count) return Nanoseconds(kMost);
        if (right.m_count > 0 && left.m_count < kLeast + right.m_count) return Nanoseconds(kLeast);
        return Nanoseconds(left.m_count - right.m_count);
    }
    friend constexpr Nanoseconds operator*(Nanoseconds time, std::int64_t factor) noexcept {
        if (time.m_count == 0 || factor == 0) return {};
        const bool isNegative = (time.m_count < 0) != (factor < 0);
        const std::uint64_t limit = magnitude(isNegative ? kLeast : kMost);
        if (magnitude(time.m_count) > limit / magnitude(factor))
            return Nanoseconds(isNegative ? kLeast : kMost);
        return Nanoseconds(time.m_count * factor);
    }
    friend constexpr Nanoseconds operator*(std::int64_t factor, Nanoseconds time) noexcept {
        return time * factor;
    }

    // How often `part` fits into `whole`, and what is left over, with the sign of `whole`. Divided
    // by 0 both are 0.
    friend constexpr std::int64_t operator/(Nanoseconds whole, Nanoseconds part) noexcept {
        if (part.m_count == 0) return 0;
        return part.m_count == -1 ? (-whole).m_count : whole.m_count / part.m_count;
    }
    friend constexpr Nanoseconds operator%(Nanoseconds whole, Nanoseconds part) noexcept {
        if (part.m_count == 0 || part.m_count == -1) return {};
        return Nanoseconds(whole.m_count % part.m_count);
    }

    // Lengthens or shortens this time, within the range.
    constexpr Nanoseconds& operator+=(Nanoseconds other) noexcept { return *this = *this + other; }
    constexpr Nanoseconds& operator-=(Nanoseconds other) noexcept { return *this = *this - other; }

private:
    static constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    static constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

    static constexpr std::uint64_t magnitude(std::int64_t count) noexcept {
        const auto bits = static_cast<std::uint64_t>(count);
        return count < 0 ? 0 - bits : bits;
    }

    std::int64_t m_count = 0;
};

// So many microseconds, also a negative number, within the range.
constexpr Nanoseconds microseconds(std::int64_t count) noexcept {
    return Nanoseconds(1'000) * count;
}

// So many milliseconds, likewise.
constexpr Nanoseconds milliseconds(std::int64_t count) noexcept {
    return Nanoseconds(1'000'000) * count;
}

// To the nearest nanosecond. Infinity is longest(), NaN is 0.
constexpr Nanoseconds seconds(double count) noexcept {
    constexpr double kLimit = 9223372036854775808.0;  // 2 to the 63rd
    const double nanoseconds = count * 1e9;
    if (nanoseconds >= kLimit) return Nanoseconds::longest();
    if (nanoseconds <= -kLimit) return Nanoseconds(std::numeric_limits<std::int64_t>::min());
    if (!(nanoseconds < 0.0 || nanoseconds > 0.0)) return {};
    const auto whole = static_cast<std::int64_t>(nanoseconds);
    const double rest = nanoseconds - static_cast<double>(whole);
    return Nanoseconds(rest >= 0.5 ? whole + 1 : rest <= -0.5 ? whole - 1 : whole);
}

// A point in time, told by how long it is after the monotonic clock's own start, which is some
// fixed moment without a meaning of its own.
class Moment {
public:
    constexpr Moment() noexcept = default;  // the clock's start

    // The moment that is `sinceStart` after the clock's start; before it when negative.
    constexpr explicit Moment(Nanoseconds sinceStart) noexcept : m_sinceStart(sinceStart) {}

    // Later than all others.
    static constexpr Moment never() noexcept { return Moment(Nanoseconds::longest()); }

    // How long after the clock's start it is.
    constexpr Nanoseconds sinceStart() const noexcept { return m_sinceStart; }

    // The earlier is less.
    // NOLINTNEXTLINE(modernize-use-nullptr): as above
    friend constexpr auto operator<=>(Moment left, Moment right) noexcept = default;

    // So much later, or so much earlier. A moment beyond the range is the first or the last there
    // is.
    friend constexpr Moment operator+(Moment moment, Nanoseconds time) noexcept {
        return Moment(moment.m_sinceStart + time);
    }
    friend constexpr Moment operator-(Moment moment, Nanoseconds time) noexcept {
        return Moment(moment.m_sinceStart - time);
    }

    // How long after `earlier` the moment `later` is; negative when it is before.
    friend constexpr Nanoseconds operator-(Moment later, Moment earlier) noexcept {
        return later.m_sinceStart - earlier.m_sinceStart;
    }

    // Moves this moment to later, or to earlier, within the range.
    constexpr Moment& operator+=(Nanoseconds time) noexcept { return *this = *this + time; }
    constexpr Moment& operator-=(Nanoseconds time) noexcept { return *this = *this - time; }

private:
    Nanoseconds m_sinceStart;
};

}  // namespace veltra
