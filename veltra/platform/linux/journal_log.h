// SPDX-License-Identifier: MIT
// The system log as a service that takes datagrams: the journal in its native protocol, or, where
// there is none, a traditional log daemon.
#pragma once

#include "veltra/platform/linux/loss_count.h"
#include "veltra/platform/system_log.h"

#include <atomic>
#include <cstdint>

#include <sys/socket.h>
#include <sys/un.h>

namespace veltra {

// One unconnected socket, made for the first record and kept. Each record names its receiver, for
// three reasons: a log service that restarts needs no new connection; threads and forked children
// share the socket as it is; and should the host close our descriptor, whatever gets its number
// next refuses the record instead of taking it for its own data. The refused number is then the
// host's: it is forgotten, not closed.
//
// A record that cannot be taken at once is lost, and where nobody listens every record is; then no
// other is tried for a second. The next one that gets through is preceded by a record of level 4
// that says how many were lost.
class JournalLog final : public SystemLog {
public:
    static constexpr const char* kJournalPath = "/run/systemd/journal/socket";
    static constexpr const char* kSyslogPath = "/dev/log";

    explicit JournalLog(const char* journalPath = kJournalPath,
                        const char* syslogPath = kSyslogPath) noexcept;
    ~JournalLog() override;

    void send(const LogRecord& record) noexcept override;
    bool skipRecord() noexcept override;

    // The descriptor in use, -1 before the first record. For tests.
    int descriptor() const noexcept { return m_descriptor.load(std::memory_order_relaxed); }

private:
    int sendTo(const sockaddr_un& address, msghdr& message) noexcept;
    int freshSocket(int refused) noexcept;
    int sendToJournal(const LogRecord& record) noexcept;
    int sendAsFile(const iovec* pieces, std::size_t count) noexcept;
    int sendToSyslog(const LogRecord& record) noexcept;
    bool deliver(const LogRecord& record) noexcept;
    bool isResting() noexcept;
    void rest() noexcept;

    sockaddr_un m_journal{};
    sockaddr_un m_syslog{};
    std::atomic<int> m_descriptor{-1};           // any thread
    std::atomic<std::uint32_t> m_restsUntil{0};  // any thread
    LossCount m_lost;
};

}  // namespace veltra
