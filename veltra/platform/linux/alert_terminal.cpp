// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_ways.h"
#include "veltra/platform/linux/deadline.h"
#include "veltra/platform/linux/descriptor.h"
#include "veltra/platform/linux/terminal_text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace veltra {

namespace {

// One question at a time; a second one would take away the first one's answer.
std::atomic_flag terminalIsTaken = ATOMIC_FLAG_INIT;

class TerminalClaim {
public:
    TerminalClaim() noexcept
        : m_isOurs(!terminalIsTaken.test_and_set(std::memory_order_acquire)) {}  // with clear()
    TerminalClaim(const TerminalClaim&) = delete;
    TerminalClaim& operator=(const TerminalClaim&) = delete;
    ~TerminalClaim() {
        if (m_isOurs) terminalIsTaken.clear(std::memory_order_release);  // with test_and_set()
    }
    bool isOurs() const noexcept { return m_isOurs; }

private:
    bool m_isOurs;
};

// A process that is moved to the background while the question stands would be stopped at its next
// access to the terminal. With these signals blocked, reading fails instead, and writing is
// allowed.
class NoTerminalStops {
public:
    NoTerminalStops() noexcept {
        sigset_t stops;
        ::sigemptyset(&stops);
        ::sigaddset(&stops, SIGTTIN);
        ::sigaddset(&stops, SIGTTOU);
        ::pthread_sigmask(SIG_BLOCK, &stops, &m_before);
    }
    NoTerminalStops(const NoTerminalStops&) = delete;
    NoTerminalStops& operator=(const NoTerminalStops&) = delete;
    ~NoTerminalStops() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

// The question as one piece of text, in a buffer of fixed size.
class Question {
public:
    explicit Question(const Alert& alert) noexcept {
        addPlain("\r\n*** ");
        add(alert.header, kHeaderLimit);
        addPlain("\r\n");
        std::string_view message = alert.message;
        while (!message.empty() && message.back() == '\n')
            message.remove_suffix(1);
        add(message, kMessageLimit);
        addPlain("\r\n");
        addButton("  1  ", alert.defaultButton);
        addButton("  2  ", alert.alternateButton);
        addButton("  3  ", alert.otherButton);
        addPlain("Number, or Return for 1");
        if (alert.timeout <= kLongestCountdown) {
            std::array<char, 32> seconds{};
            std::snprintf(seconds.data(), seconds.size(), " (within %.0f s)",
                          std::ceil(alert.timeout.seconds()));
            addPlain(seconds.data());
        }
        addPlain(": ");
    }

    std::string_view text() const noexcept { return {m_text.data(), m_length}; }

private:
    // A question that may stand longer does not press anybody.
    static constexpr Nanoseconds kLongestCountdown = seconds(3600.0);
    static constexpr std::size_t kHeaderLimit = 512;
    static constexpr std::size_t kMessageLimit = 6144;
    static constexpr std::size_t kButtonLimit = 128;

    void addPlain(std::string_view text) noexcept { add(text, text.size(), false); }

    void add(std::string_view text, std::size_t limit, bool isForeign = true) noexcept {
        const std::span<char> free = std::span(m_text).subspan(m_length);
        const std::span<char> out = free.first(std::min(limit, free.size()));
        if (isForeign) {
            m_length += terminalText(text, out);
        } else {
            m_length += text.copy(out.data(), out.size());
        }
    }

    void addButton(std::string_view number, std::string_view label) noexcept {
        if (label.empty()) return;
        addPlain(number);
        add(label, kButtonLimit);
        addPlain("\r\n");
    }

    std::array<char, 8192> m_text{};
    std::size_t m_length = 0;
};

bool writeAll(int terminal, std::string_view text, const Deadline& deadline) noexcept {
    while (!text.empty()) {
        const ssize_t count = ::write(terminal, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            if (waitFor(terminal, POLLOUT, deadline) != WaitResult::Ready) return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

// The answer that a typed line stands for; nothing when it is none.
std::optional<AlertAnswer> answerOf(std::string_view line, const Alert& alert) noexcept {
    constexpr std::string_view kBlanks = " \t";
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    line = line.substr(0, line.find_last_not_of(kBlanks) + 1);
    if (line.empty() || line == "1") return AlertAnswer::Default;
    if (line == "2" && !alert.alternateButton.empty()) return AlertAnswer::Alternate;
    if (line == "3" && !alert.otherButton.empty()) return AlertAnswer::Other;
    return std::nullopt;
}

// Reads lines until one is an answer. A terminal that is closed, or taken away from this process
// group, gives none any more: TimedOut.
AlertAnswer readAnswer(int terminal, const Alert& alert, const Deadline& deadline) noexcept {
    std::array<char, 64> line{};
    std::size_t length = 0;
    while (waitFor(terminal, POLLIN, deadline) == WaitResult::Ready) {
        char typed = 0;
        const ssize_t count = ::read(terminal, &typed, 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count <= 0) break;
        if (typed != '\n' && typed != '\r') {  // a terminal in raw mode sends the latter
            // A line that is too long keeps its full length, and so is no answer.
            if (length < line.size()) line[length++] = typed;
            continue;
        }
        if (const auto answer = answerOf({line.data(), length}, alert)) {
            writeAll(terminal, "\r\n", deadline);
            return *answer;
        }
        length = 0;
        if (!writeAll(terminal, "Please type one of the numbers: ", deadline)) break;
    }
    writeAll(terminal, "\r\nNo answer.\r\n", deadline);
    return AlertAnswer::TimedOut;
}

}  // namespace

std::optional<AlertAnswer> askOnTerminal(const Alert& alert) noexcept {
    const Deadline deadline(alert.timeout);
    const TerminalClaim claim;
    if (!claim.isOurs()) return std::nullopt;
    // Not to wait in reads and writes is a property of this opening alone: the host's own
    // descriptors of the terminal keep theirs.
    const Descriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!terminal.isOpen()) return std::nullopt;
    if (::tcgetpgrp(terminal.number()) != ::getpgrp()) return std::nullopt;
    const NoTerminalStops noStops;

    // What was typed before the question is no answer to it.
    ::tcflush(terminal.number(), TCIFLUSH);
    if (!writeAll(terminal.number(), Question(alert).text(), deadline)) return std::nullopt;
    return readAnswer(terminal.number(), alert, deadline);
}

}  // namespace veltra
