// SPDX-License-Identifier: MIT
#include "veltra/platform/standard_error.h"

#include "veltra/base/immortal.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/linux/descriptor_standard_error.h"
#include "veltra/platform/linux/signal_hold.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <mutex>
#include <optional>

#include <fcntl.h>

namespace veltra {

namespace {

constexpr int kMostInterruptions = 16;

// One for the process, as standard error is.
AdaptiveLock lineLock;

int reopenStandardError() noexcept {
    return ::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool isRefusal(int error) noexcept {
    return error == EOPNOTSUPP || error == ENOSYS || error == EINVAL || error == ESPIPE;
}

bool isSameFile(const StandardError::Status& one, const StandardError::Status& other) noexcept {
    return one.device == other.device && one.inode == other.inode;
}

template <typename Number>
bool takeNumber(std::string_view& text, Number& number) noexcept {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{}) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

}  // namespace

// The part of a line, and of the notes before it, that is not yet written.
class UnwrittenLine {
public:
    using Notes = std::array<std::string_view, 3>;

    UnwrittenLine(const Notes& notes, const StandardError::Pieces& pieces) noexcept {
        for (const std::string_view note : notes)
            add(note);
        m_notes = m_count;
        std::size_t size = 0;
        for (const std::string_view piece : pieces)
            size += piece.size();
        if (size > m_joined.size()) {
            for (const std::string_view piece : pieces)
                add(piece);
            return;
        }
        // The kernel takes one short piece faster than three.
        char* end = m_joined.data();
        for (const std::string_view piece : pieces)
            end += piece.copy(end, piece.size());
        add({m_joined.data(), size});
    }
    UnwrittenLine(const UnwrittenLine&) = delete;
    UnwrittenLine& operator=(const UnwrittenLine&) = delete;

    bool isDone() const noexcept { return m_count == 0; }
    bool hasWrittenNotes() const noexcept { return m_first >= m_notes; }
    // The last byte that was written; nothing before the first.
    std::optional<char> lastWritten() const noexcept { return m_lastWritten; }
    iovec* pieces() noexcept { return m_pieces.data() + m_first; }
    int count() const noexcept { return static_cast<int>(m_count); }

    void advance(std::size_t bytes) noexcept {
        while (m_count > 0 && bytes >= pieces()->iov_len) {
            bytes -= pieces()->iov_len;
            m_lastWritten = static_cast<const char*>(pieces()->iov_base)[pieces()->iov_len - 1];
            ++m_first;
            --m_count;
        }
        if (bytes == 0) return;
        m_lastWritten = static_cast<const char*>(pieces()->iov_base)[bytes - 1];
        pieces()->iov_base = static_cast<char*>(pieces()->iov_base) + bytes;
        pieces()->iov_len -= bytes;
    }

    // Repeats `attempt` until the line is done or an attempt gets nowhere; answers 0 or the error.
    template <typename Attempt>
    int drain(Attempt attempt) noexcept {
        int interruptions = 0;
        while (!isDone()) {
            const ssize_t written = attempt();
            if (written > 0)
                advance(static_cast<std::size_t>(written));
            else if (written == 0)
                return EAGAIN;
            else if (errno != EINTR || ++interruptions > kMostInterruptions)
                return errno;
        }
        return 0;
    }

private:
    void add(std::string_view piece) noexcept {
        if (!piece.empty()) m_pieces[m_count++] = {const_cast<char*>(piece.data()), piece.size()};
    }

    std::array<iovec, std::tuple_size_v<Notes> + std::tuple_size_v<StandardError::Pieces>>
        m_pieces{};
    std::array<char, 512> m_joined;
    std::size_t m_first = 0;
    std::size_t m_count = 0;
    std::size_t m_notes = 0;
    std::optional<char> m_lastWritten;
};

DescriptorStandardError::DescriptorStandardError() noexcept
    : DescriptorStandardError(StandardErrorCalls{}) {}

DescriptorStandardError::DescriptorStandardError(const StandardErrorCalls& calls) noexcept
    : m_calls(calls) {
    if (m_calls.reopen == nullptr) m_calls.reopen = reopenStandardError;
    addForkHandler({lineLock, ForkPolicy::ResetInChild});
}

StandardError::Status DescriptorStandardError::inspect() const noexcept {
    if (m_calls.fpathconf(STDERR_FILENO, _PC_PIPE_BUF) < 0) return {};
    // What stands beyond a start is a regular file, or a disk, which takes lines like one. To ask
    // for the place is cheap, above all where a server would have to be asked for the rest.
    if (m_calls.lseek(STDERR_FILENO, 0, SEEK_CUR) > 0) return {Kind::RegularFile};
    return identify();
}

StandardError::Status DescriptorStandardError::identify() const noexcept {
    struct stat status {};
    if (m_calls.fstat(STDERR_FILENO, &status) != 0) return {};
    const Kind kind = S_ISREG(status.st_mode)    ? Kind::RegularFile
                      : S_ISFIFO(status.st_mode) ? Kind::Pipe
                      : S_ISSOCK(status.st_mode) ? Kind::Socket
                                                 : Kind::Other;
    return {kind, status.st_dev, status.st_ino};
}

StandardError::Status DescriptorStandardError::identified(const Status& status) const noexcept {
    return status.inode != 0 ? status : identify();
}

bool DescriptorStandardError::isClosed() const noexcept {
    return m_calls.lseek(STDERR_FILENO, 0, SEEK_CUR) < 0 && errno == EBADF;
}

bool DescriptorStandardError::isManaged(const Status& status) const noexcept {
    if (const char* starter = environmentVariable("SYSTEMD_EXEC_PID")) {
        std::string_view text = starter;
        std::int32_t number = 0;
        if (takeNumber(text, number) && text.empty() && number == Process::current().processId())
            return true;
    }
    if (const char* journal = environmentVariable("JOURNAL_STREAM")) {
        std::string_view text = journal;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        if (!takeNumber(text, device) || !text.starts_with(':')) return false;
        text.remove_prefix(1);
        return takeNumber(text, inode) && text.empty() && device == status.device &&
               inode == status.inode;
    }
    return false;
}

int DescriptorStandardError::writeAll(UnwrittenLine& line, int descriptor) const noexcept {
    return line.drain([&] { return m_calls.writev(descriptor, line.pieces(), line.count()); });
}

int DescriptorStandardError::writeIntoRoom(UnwrittenLine& line) const noexcept {
    return line.drain([&]() -> ssize_t {
        pollfd ready{STDERR_FILENO, POLLOUT, 0};
        const int answer = m_calls.poll(&ready, 1, 0);
        if (answer <= 0) return answer;
        iovec little = *line.pieces();
        little.iov_len = std::min<std::size_t>(little.iov_len, PIPE_BUF);
        return m_calls.writev(STDERR_FILENO, &little, 1);
    });
}

int DescriptorStandardError::writeWithoutWaiting(Kind kind, UnwrittenLine& line) noexcept {
    std::atomic<bool>& refuses = kind == Kind::Pipe ? m_pipesRefuseNoWait : m_othersRefuseNoWait;
    if (!refuses.load(std::memory_order_relaxed)) {  // a hint: nothing is published with it
        const int error = line.drain(
            [&] { return m_calls.writevNoWait(STDERR_FILENO, line.pieces(), line.count()); });
        if (!isRefusal(error)) return error;
        refuses.store(true, std::memory_order_relaxed);
    }
    if (kind == Kind::Pipe || m_calls.isatty(STDERR_FILENO) == 1) {
        const int again = m_calls.reopen();
        if (again >= 0) {
            const int error = writeAll(line, again);
            m_calls.close(again);
            return error;
        }
    }
    return writeIntoRoom(line);
}

void DescriptorStandardError::write(const Status& status, const Pieces& pieces) noexcept {
    if (status.kind == Kind::Unusable && isClosed()) return;
    SignalHold signals;
    const std::lock_guard guard(lineLock);
    const std::size_t lost = m_lost.take();
    const LossText loss("veltra: lines cut or lost here: ", lost);
    const bool isOpen = m_cutFile && isSameFile(*m_cutFile, identified(status));
    UnwrittenLine line({isOpen ? "\n" : "", loss.view(), lost > 0 ? "\n" : ""}, pieces);
    writeLine(status, line, signals);
    if (!line.hasWrittenNotes()) m_lost.add(lost);
    if (!line.isDone()) m_lost.add(1);
    if (!line.lastWritten()) return;
    m_cutFile.reset();
    if (!line.isDone() && line.lastWritten() != '\n') m_cutFile = identified(status);
}

void DescriptorStandardError::writeLine(const Status& status, UnwrittenLine& line,
                                        SignalHold& signals) noexcept {
    int error = 0;
    switch (status.kind) {
        case Kind::RegularFile:
            error = writeAll(line, STDERR_FILENO);
            break;
        case Kind::Socket:
            error = line.drain([&] {
                msghdr message{};
                message.msg_iov = line.pieces();
                message.msg_iovlen = static_cast<std::size_t>(line.count());
                return m_calls.sendmsg(STDERR_FILENO, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
            });
            break;
        case Kind::Pipe:
        case Kind::Unusable:  // open, though nothing is known about it
        case Kind::Other:
            error = writeWithoutWaiting(status.kind, line);
            break;
    }
    if (error == EPIPE && status.kind != Kind::Socket) signals.takeAway(SIGPIPE);
    if (error == EFBIG) signals.takeAway(SIGXFSZ);
}

StandardError& platformStandardError() noexcept {
    static const Immortal<DescriptorStandardError> stream;
    return *stream;
}

}  // namespace veltra
