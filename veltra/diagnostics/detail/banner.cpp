// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/banner.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/process.h"

namespace veltra::detail {

namespace {

void putTwoDigits(char* place, std::int32_t value) noexcept {
    place[0] = static_cast<char>('0' + value / 10);
    place[1] = static_cast<char>('0' + value % 10);
}

}  // namespace

bool BannerText::compose(const char* tag, std::string_view separator) noexcept {
    const WallTime now = Clocks::current().wall();
    const std::optional<CivilTime> time = LocalTime::current().civilTime(now);
    if (!time) return false;

    m_line.appendDecimal(time->year, 4);
    char rest[] = "-00-00 00:00:00.000";
    putTwoDigits(&rest[1], time->month);
    putTwoDigits(&rest[4], time->day);
    putTwoDigits(&rest[7], time->hour);
    putTwoDigits(&rest[10], time->minute);
    putTwoDigits(&rest[13], time->second);
    const std::int32_t milliseconds = now.nanoseconds / 1'000'000;
    putTwoDigits(&rest[16], milliseconds / 10);
    rest[18] = static_cast<char>('0' + milliseconds % 10);
    m_line.append(rest);
    m_timeLength = m_line.view().size();

    const Process& process = Process::current();
    m_thread.appendHexadecimal(process.threadId());
    m_line.append(" ");
    m_line.append(process.programName());
    m_line.append("[");
    m_line.appendDecimal(process.processId());
    m_line.append(":");
    m_line.append(m_thread.view());
    m_line.append("] ");
    if (tag != nullptr) {
        m_line.append(tag);
        m_line.append(separator);
    }
    return true;
}

}  // namespace veltra::detail
