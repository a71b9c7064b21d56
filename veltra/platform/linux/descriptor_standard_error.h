// SPDX-License-Identifier: MIT
// Standard error as descriptor 2.
#pragma once

#include "veltra/platform/linux/loss_count.h"
#include "veltra/platform/standard_error.h"

#include <atomic>
#include <optional>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace veltra {

class SignalHold;
class UnwrittenLine;

// The kernel's part, replaceable so that a test can answer any error anywhere.
struct StandardErrorCalls {
    off_t (*lseek)(int, off_t, int) = ::lseek;
    int (*fstat)(int, struct stat*) = ::fstat;
    long (*fpathconf)(int, int) = ::fpathconf;
    // The kernel takes one piece faster by itself than as a list.
    ssize_t (*writev)(int, const iovec*, int) = [](int descriptor, const iovec* pieces, int count) {
        return count == 1 ? ::write(descriptor, pieces->iov_base, pieces->iov_len)
                          : ::writev(descriptor, pieces, count);
    };
    // writev that gives up with EAGAIN where it would have to wait, whatever the descriptor's mode.
    ssize_t (*writevNoWait)(int, const iovec*, int) = [](int descriptor, const iovec* pieces,
                                                         int count) {
        return ::pwritev2(descriptor, pieces, count, -1, RWF_NOWAIT);
    };
    ssize_t (*sendmsg)(int, const msghdr*, int) = ::sendmsg;
    int (*poll)(pollfd*, nfds_t, int) = ::poll;
    int (*isatty)(int) = ::isatty;
    int (*reopen)() = nullptr;  // a non-blocking descriptor of what standard error leads to, or -1
    int (*close)(int) = ::close;
};

// How a line is written without waiting and without touching the descriptor's mode, which other
// processes share: a socket takes a flag; a pipe and some devices take the no-wait flag of writev;
// where the kernel refuses it, a pipe or terminal is opened once more, non-blocking, for this line
// alone; what is left is asked whether it has room, and given little at a time. (Between asking and
// giving, another process could fill the room: only a terminal that this process may not open is
// ever in that place.)
//
// Lines that were cut or lost are counted. The next one begins on a line of its own and is preceded
// by "veltra: lines cut or lost here: <count>".
class DescriptorStandardError final : public StandardError {
public:
    DescriptorStandardError() noexcept;
    explicit DescriptorStandardError(const StandardErrorCalls& calls) noexcept;

    Status inspect() const noexcept override;
    bool isManaged(const Status& status) const noexcept override;
    void write(const Status& status, const Pieces& pieces) noexcept override;

private:
    Status identify() const noexcept;
    bool isClosed() const noexcept;
    Status identified(const Status& status) const noexcept;
    void writeLine(const Status& status, UnwrittenLine& line, SignalHold& signals) noexcept;
    int writeAll(UnwrittenLine& line, int descriptor) const noexcept;
    int writeWithoutWaiting(Kind kind, UnwrittenLine& line) noexcept;
    int writeIntoRoom(UnwrittenLine& line) const noexcept;

    StandardErrorCalls m_calls;
    // Under the lock that keeps lines apart.
    LossCount m_lost;
    std::optional<Status> m_cutFile;                // in which the last line was cut before its end
    std::atomic<bool> m_pipesRefuseNoWait{false};   // any thread
    std::atomic<bool> m_othersRefuseNoWait{false};  // any thread
};

}  // namespace veltra
