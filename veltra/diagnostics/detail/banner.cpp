#include "veltra/diagnostics/detail/banner.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/process.h"

namespace veltra {

bool BannerText::compose(const char* tag, std::string_view separator) noexcept {
    const WallTime now = Clocks::current().wall();
    const std::optional<CivilTime> time = LocalTime::current().civilTime(now);
    if (!time) return false;

    m_line.appendDecimal(time->year, 4);
    m_line.append("-");
    m_line.appendDecimal(time->month, 2);
    m_line.append("-");
    m_line.appendDecimal(time->day, 2);
    m_line.append(" ");
    m_line.appendDecimal(time->hour, 2);
    m_line.append(":");
    m_line.appendDecimal(time->minute, 2);
    m_line.append(":");
    m_line.appendDecimal(time->second, 2);
    m_line.append(".");
    m_line.appendDecimal(now.nanoseconds / 1'000'000, 3);
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

}  // namespace veltra
