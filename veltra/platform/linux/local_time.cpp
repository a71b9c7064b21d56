// SPDX-License-Identifier: MIT
#include "veltra/platform/local_time.h"

#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"

#include <atomic>
#include <chrono>
#include <limits>

#include <time.h>

namespace veltra {

namespace {

constexpr std::int64_t kQuarter = 900;  // seconds

// One word says where the clock stands in one quarter of an hour: the number of the quarter since
// 1970 in the upper 24 bits (enough until 2448), the distance from UTC in the lower 8, in quarters
// and 128 more. 0 says nothing yet. A word is only made for quarters throughout which the zone
// keeps one distance that is a whole number of quarters, and where the C library agrees with the
// arithmetic below at both ends; every other moment is left to the C library.
using QuarterWord = std::uint32_t;
constexpr std::int64_t kLastQuarter = 0xFFFFFF;
constexpr std::int64_t kUtc = 128;

std::optional<CivilTime> askSystem(std::int64_t seconds, long* secondsFromUtc = nullptr) noexcept {
    if (seconds > std::numeric_limits<time_t>::max() ||
        seconds < std::numeric_limits<time_t>::min())
        return std::nullopt;
    const auto moment = static_cast<time_t>(seconds);
    tm fields{};
    if (::localtime_r(&moment, &fields) == nullptr) return std::nullopt;
    if (fields.tm_year > std::numeric_limits<int>::max() - 1900) return std::nullopt;
    if (secondsFromUtc != nullptr) *secondsFromUtc = fields.tm_gmtoff;
    return CivilTime{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                     fields.tm_hour,        fields.tm_min,     fields.tm_sec};
}

CivilTime civilFrom(std::int64_t secondsAtUtc, std::int64_t secondsFromUtc) noexcept {
    using namespace std::chrono;
    const std::chrono::seconds local{secondsAtUtc + secondsFromUtc};
    const auto midnight = floor<days>(local);
    const year_month_day date{sys_days{midnight}};
    const auto rest = static_cast<std::int32_t>((local - midnight).count());
    return {static_cast<int>(date.year()),
            static_cast<std::int32_t>(static_cast<unsigned>(date.month())),
            static_cast<std::int32_t>(static_cast<unsigned>(date.day())),
            rest / 3600,
            rest / 60 % 60,
            rest % 60};
}

QuarterWord wordFor(std::int64_t quarter) noexcept {
    const std::int64_t first = quarter * kQuarter;
    const std::int64_t last = first + kQuarter - 1;
    long atFirst = 0;
    long atLast = 0;
    ::tzset();
    const std::optional<CivilTime> firstTime = askSystem(first, &atFirst);
    const std::optional<CivilTime> lastTime = askSystem(last, &atLast);
    if (!firstTime || !lastTime || atFirst != atLast || atFirst % kQuarter != 0) return 0;
    const std::int64_t distance = atFirst / kQuarter + kUtc;
    if (static_cast<std::uint8_t>(distance) != distance) return 0;
    if (*firstTime != civilFrom(first, atFirst) || *lastTime != civilFrom(last, atLast)) return 0;
    return static_cast<QuarterWord>(quarter << 8 | distance);
}

// Stands for the text of the variable TZ: 0 when it is not set.
std::uint32_t zoneName() noexcept {
    const char* text = environmentVariable("TZ");
    if (text == nullptr) return 0;
    std::uint32_t hash = 2166136261;
    for (; *text != '\0'; ++text)
        hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619U;
    return hash | 1U;
}

// The C library takes UTC for the local zone when memory is out where it first reads the zone. So
// it reads when the library is loaded.
const struct ZoneReader {
    ZoneReader() noexcept { ::tzset(); }
} zoneReader;

class LinuxLocalTime final : public LocalTime {
public:
    std::optional<CivilTime> civilTime(WallTime moment) const noexcept override {
        const std::uint32_t zone = zoneName();
        // Acquire and release: the word of another zone is gone where the new name is seen. (The
        // host changes the environment while nobody reads it, so no word comes late.)
        if (m_zone.load(std::memory_order_acquire) != zone) {
            ::tzset();
            m_word.store(0, std::memory_order_relaxed);
            m_zone.store(zone, std::memory_order_release);
        }
        if (moment.seconds < 0 || moment.seconds / kQuarter > kLastQuarter)
            return askSystem(moment.seconds);
        const std::int64_t quarter = moment.seconds / kQuarter;
        // Relaxed: the word is complete in itself.
        QuarterWord word = m_word.load(std::memory_order_relaxed);
        if (word == 0 || word >> 8 != quarter) {
            word = wordFor(quarter);
            if (word == 0) return askSystem(moment.seconds);
            m_word.store(word, std::memory_order_relaxed);
        }
        return civilFrom(moment.seconds,
                         (static_cast<std::int64_t>(word & 0xFF) - kUtc) * kQuarter);
    }

private:
    mutable std::atomic<QuarterWord> m_word{0};
    mutable std::atomic<std::uint32_t> m_zone{zoneName()};
};

}  // namespace

const LocalTime& platformLocalTime() noexcept {
    static const Immortal<LinuxLocalTime> localTime;
    return *localTime;
}

}  // namespace veltra
