// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/banner.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/process.h"

#include <charconv>

namespace veltra::detail {

namespace {

void putTwoDigits(char* place, std::int32_t value) noexcept {
    const auto number = static_cast<std::uint32_t>(value);
    place[0] = static_cast<char>('0' + number / 10);
    place[1] = static_cast<char>('0' + number % 10);
}

}  // namespace

bool BannerText::compose(const char* tag, std::string_view separator) noexcept {
    const WallTime now = Clocks::current().wall();
    const std::optional<CivilTime> time = LocalTime::current().civilTime(now);
    if (!time) return false;

    char stamp[] = "0000-00-00 00:00:00.000 ";
    const bool hasUsualYear = time->year >= 0 && time->year <= 9999;
    if (hasUsualYear) {
        putTwoDigits(&stamp[0], time->year / 100);
        putTwoDigits(&stamp[2], time->year % 100);
    } else {
        m_line.appendDecimal(time->year, 4);
    }
    putTwoDigits(&stamp[5], time->month);
    putTwoDigits(&stamp[8], time->day);
    putTwoDigits(&stamp[11], time->hour);
    putTwoDigits(&stamp[14], time->minute);
    putTwoDigits(&stamp[17], time->second);
    const std::int32_t milliseconds = now.nanoseconds / 1'000'000;
    putTwoDigits(&stamp[20], milliseconds / 10);
    stamp[22] = static_cast<char>('0' + milliseconds % 10);
    m_line.append(std::string_view(stamp, sizeof stamp - 1).substr(hasUsualYear ? 0 : 4));
    m_timeLength = m_line.view().size() - 1;

    const Process& process = Process::current();
    m_line.append(process.programName());
    char numbers[32] = "[";
    char* const end = numbers + sizeof numbers;
    char* const colon = std::to_chars(numbers + 1, end, process.processId()).ptr;
    char* const bracket = std::to_chars(colon + 1, end, process.threadId(), 16).ptr;
    *colon = ':';
    m_thread.append({colon + 1, bracket});
    bracket[0] = ']';
    bracket[1] = ' ';
    m_line.append({numbers, bracket + 2});
    if (tag != nullptr) {
        m_line.append(tag);
        m_line.append(separator);
    }
    return true;
}

}  // namespace veltra::detail
