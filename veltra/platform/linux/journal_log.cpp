// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/journal_log.h"

#include "veltra/base/immortal.h"
#include "veltra/base/whole_characters.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/linux/descriptor.h"
#include "veltra/platform/linux/journal_datagram.h"
#include "veltra/platform/linux/signal_hold.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include <fcntl.h>
#include <sys/mman.h>

namespace veltra {

namespace {

constexpr int kSendFlags = MSG_DONTWAIT | MSG_NOSIGNAL;

constexpr std::size_t kMostToSyslog = 8192;  // bytes of message where a daemon takes no more

sockaddr_un addressOf(const char* path) noexcept {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string_view text = path;
    if (text.size() < sizeof address.sun_path)  // else the empty path, where nobody listens
        text.copy(address.sun_path, text.size());
    return address;
}

bool isOneOf(std::initializer_list<int> errors, int error) noexcept {
    return std::ranges::find(errors, error) != errors.end();
}

bool nobodyListens(int error) noexcept {
    return isOneOf({ENOENT, ENOTDIR, ECONNREFUSED, EPROTOTYPE, EACCES}, error);
}

// What a descriptor answers that is not our socket. Our own, given an address of its own family,
// answers none of these.
bool isForeign(int error) noexcept {
    return isOneOf({EBADF, ENOTSOCK, EAFNOSUPPORT, EINVAL, EISCONN, EOPNOTSUPP, EDESTADDRREQ},
                   error);
}

// A datagram socket honours the address or refuses it; connected sockets of other types ignore it,
// and would take the record for data of their connection.
int sendIfDatagram(int descriptor, const msghdr& message) noexcept {
    int type = 0;
    socklen_t size = sizeof type;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) != 0) return errno;
    if (type != SOCK_DGRAM) return EISCONN;
    return ::sendmsg(descriptor, &message, kSendFlags) >= 0 ? 0 : errno;
}

// "<13>Jan  1 09:05:07 tag[123]: ", the date left out where it is unknown.
std::size_t traditionalHeader(const LogRecord& record, char* text, std::size_t size) noexcept {
    static constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr int kUserLevelMessages = 1 << 3;
    const std::string_view level = record.fields[LogRecord::Level].value.value_or("");
    const int priority = kUserLevelMessages + (level.size() == 1 ? level[0] - '0' : 0);
    std::array<char, 32> date{};
    if (const auto now = LocalTime::current().civilTime(Clocks::current().wall()))
        std::snprintf(date.data(), date.size(), "%s %2d %02d:%02d:%02d ",
                      kMonths[static_cast<std::size_t>(now->month - 1)], now->day, now->hour,
                      now->minute, now->second);
    const int tagLength = static_cast<int>(std::min<std::size_t>(record.facility.size(), 64));
    const int length =
        std::snprintf(text, size, "<%d>%s%.*s[%d]: ", priority, date.data(), tagLength,
                      record.facility.data(), Process::current().processId());
    return length > 0 ? std::min(static_cast<std::size_t>(length), size - 1) : 0;
}

std::optional<std::uint32_t> tenthsOfSeconds() noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (now.hasFailed()) return std::nullopt;
    return static_cast<std::uint32_t>(now.moment().sinceStart() / milliseconds(100));
}

}  // namespace

JournalLog::JournalLog(const char* journalPath, const char* syslogPath) noexcept
    : m_journal(addressOf(journalPath)), m_syslog(addressOf(syslogPath)) {}

JournalLog::~JournalLog() {
    const Descriptor closing(m_descriptor.load(std::memory_order_relaxed));
}

void JournalLog::send(const LogRecord& record) noexcept {
    const std::size_t lost = m_lost.take();
    bool isTold = true;
    if (lost > 0) {
        const LossText text("log records lost here: ", lost);
        LogRecord note = record;
        note.fields[LogRecord::Level].value = "4";
        note.fields[LogRecord::Message].value = text.view();
        isTold = deliver(note);
    }
    if (isTold && deliver(record)) return;
    m_lost.add((isTold ? 0 : lost) + 1);
}

bool JournalLog::skipRecord() noexcept {
    if (!isResting()) return false;
    m_lost.add(1);
    return true;
}

bool JournalLog::deliver(const LogRecord& record) noexcept {
    if (isResting()) return false;
    int error = sendToJournal(record);
    if (nobodyListens(error)) error = sendToSyslog(record);
    if (nobodyListens(error)) rest();
    return error == 0;
}

// In tenths of a second, modulo 2 to the 32nd; 0 is awake. Relaxed: a hint.
bool JournalLog::isResting() noexcept {
    const std::uint32_t until = m_restsUntil.load(std::memory_order_relaxed);
    if (until == 0) return false;
    const std::optional<std::uint32_t> now = tenthsOfSeconds();
    if (now && static_cast<std::int32_t>(until - *now) > 0) return true;
    m_restsUntil.store(0, std::memory_order_relaxed);
    return false;
}

void JournalLog::rest() noexcept {
    constexpr std::uint32_t kSecond = 10;
    if (const std::optional<std::uint32_t> now = tenthsOfSeconds())
        m_restsUntil.store(std::max<std::uint32_t>(*now + kSecond, 1), std::memory_order_relaxed);
}

// The number of a new socket in the place of `refused`; another thread's where it was faster.
int JournalLog::freshSocket(int refused) noexcept {
    Descriptor fresh(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!fresh.isOpen()) return -1;
    int current = refused;
    // Release: with the load in sendTo(). Acquire: the other thread's socket is used next.
    if (m_descriptor.compare_exchange_strong(current, fresh.number(), std::memory_order_acq_rel,
                                             std::memory_order_acquire))
        return fresh.release();
    return current;
}

int JournalLog::sendTo(const sockaddr_un& address, msghdr& message) noexcept {
    message.msg_name = const_cast<sockaddr_un*>(&address);
    message.msg_namelen = sizeof address;
    int descriptor = m_descriptor.load(std::memory_order_acquire);  // with freshSocket()
    int error = EBADF;
    for (int attempt = 0; attempt < 2 && isForeign(error); ++attempt) {
        if (descriptor < 0 || attempt > 0) descriptor = freshSocket(descriptor);
        if (descriptor < 0) return EMFILE;
        error = sendIfDatagram(descriptor, message);
    }
    return error;
}

int JournalLog::sendToJournal(const LogRecord& record) noexcept {
    JournalDatagram datagram(record);
    msghdr message{};
    message.msg_iov = datagram.pieces();
    message.msg_iovlen = datagram.count();
    const int error = sendTo(m_journal, message);
    if (error != EMSGSIZE && error != ENOBUFS) return error;
    return sendAsFile(datagram.pieces(), datagram.count());
}

// What is too long for a datagram goes as a sealed file in memory, its descriptor in the datagram.
int JournalLog::sendAsFile(const iovec* pieces, std::size_t count) noexcept {
    const Descriptor file(::memfd_create("log record", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file.isOpen()) return EMFILE;
    {
        SignalHold signals;  // the limit on file sizes holds for these files too
        for (std::size_t index = 0; index < count; ++index) {
            const char* text = static_cast<const char*>(pieces[index].iov_base);
            for (std::size_t left = pieces[index].iov_len; left > 0;) {
                const ssize_t written = ::write(file.number(), text, left);
                if (written < 0 && errno == EFBIG) signals.takeAway(SIGXFSZ);
                if (written <= 0) return ENOSPC;
                text += written;
                left -= static_cast<std::size_t>(written);
            }
        }
    }
    if (::fcntl(file.number(), F_ADD_SEALS,
                F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL))
        return errno;

    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{};
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    const int number = file.number();
    std::memcpy(CMSG_DATA(header), &number, sizeof number);
    return sendTo(m_journal, message);
}

int JournalLog::sendToSyslog(const LogRecord& record) noexcept {
    std::array<char, 160> header;
    std::string_view text = record.fields[LogRecord::Message].value.value_or("");
    std::array<iovec, 2> pieces{
        {{header.data(), traditionalHeader(record, header.data(), header.size())},
         {const_cast<char*>(text.data()), text.size()}}};
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    const int error = sendTo(m_syslog, message);
    if ((error != EMSGSIZE && error != ENOBUFS) || text.size() <= kMostToSyslog) return error;
    pieces[1].iov_len = wholeCharacters(text.substr(0, kMostToSyslog)).size();
    return sendTo(m_syslog, message);
}

SystemLog& platformSystemLog() noexcept {
    static const Immortal<JournalLog> log;
    return *log;
}

}  // namespace veltra
