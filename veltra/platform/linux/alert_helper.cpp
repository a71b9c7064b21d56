// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_helper.h"

#include "veltra/base/whole_characters.h"
#include "veltra/platform/alert_protocol.h"
#include "veltra/platform/linux/alert_helper_search.h"
#include "veltra/platform/linux/alert_ways.h"
#include "veltra/platform/linux/deadline.h"
#include "veltra/platform/linux/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr std::size_t kLongestText =
    16'384;  // bytes; far below what the kernel takes as one argument

class Arguments {
public:
    Arguments(const Alert& alert, const char* program)
        : m_texts{program,
                  argument("--title=", program_invocation_short_name),
                  argument("--header=", alert.header),
                  argument("--message=", alert.message),
                  argument("--default=", alert.defaultButton),
                  argument("--alternate=", alert.alternateButton),
                  argument("--other=", alert.otherButton),
                  "--timeout=" + std::to_string(alert.timeout.wholeMilliseconds())} {
        std::transform(m_texts.begin(), m_texts.end(), m_pointers.begin(),
                       [](std::string& text) { return text.data(); });
    }

    char* const* list() noexcept { return m_pointers.data(); }  // ends with a null

private:
    static std::string argument(std::string_view name, std::string_view value) {
        std::string text(name);
        text +=
            value.size() > kLongestText ? wholeCharacters(value.substr(0, kLongestText)) : value;
        std::replace(text.begin(), text.end(), '\0', ' ');
        return text;
    }

    static constexpr std::size_t kCount = 8;
    std::array<std::string, kCount> m_texts;
    std::array<char*, kCount + 1> m_pointers{};
};

// What the child gets: the socket as standard input and output, nothing else of ours, no signal
// handling of the host's, and no rights that the user did not have.
class SpawnSettings {
public:
    explicit SpawnSettings(int socket) noexcept {
        m_hasActions = ::posix_spawn_file_actions_init(&m_actions) == 0;
        m_hasAttributes = ::posix_spawnattr_init(&m_attributes) == 0;
        if (m_hasActions && m_hasAttributes) m_isReady = redirect(socket) && resetSignals();
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        if (m_hasActions) ::posix_spawn_file_actions_destroy(&m_actions);
        if (m_hasAttributes) ::posix_spawnattr_destroy(&m_attributes);
    }

    // The process id, or -1.
    pid_t spawn(const char* program, char* const* arguments) const noexcept {
        pid_t child = -1;
        if (!m_isReady) return -1;
        if (::posix_spawn(&child, program, &m_actions, &m_attributes, arguments, environ) != 0) {
            return -1;
        }
        return child;
    }

private:
    // The host may have closed any of 0 to 2, so that the socket itself may have such a number: it
    // moves to 1 before anything is put on 0 and 2.
    bool redirect(int socket) noexcept {
        return ::posix_spawn_file_actions_adddup2(&m_actions, socket, STDOUT_FILENO) == 0 &&
               ::posix_spawn_file_actions_adddup2(&m_actions, STDOUT_FILENO, STDIN_FILENO) == 0 &&
               ::posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY,
                                                  0) == 0 &&
               ::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1) == 0;
    }

    bool resetSignals() noexcept {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        constexpr short kFlags =
            POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_RESETIDS;
        return ::posix_spawnattr_setsigmask(&m_attributes, &none) == 0 &&
               ::posix_spawnattr_setsigdefault(&m_attributes, &all) == 0 &&
               ::posix_spawnattr_setflags(&m_attributes, kFlags) == 0;
    }

    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
    bool m_hasActions = false;
    bool m_hasAttributes = false;
    bool m_isReady = false;
};

// Kills what is left of the child and takes its status. A child that is no longer ours, because the
// host ignores SIGCHLD or reaps everything itself, is not killed: its number may be another's now.
void endChild(pid_t child) noexcept {
    siginfo_t information{};
    const auto id = static_cast<id_t>(child);
    if (::waitid(P_PID, id, &information, WEXITED | WNOHANG | WNOWAIT) == 0) {
        ::kill(child, SIGKILL);
    }
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::optional<AlertAnswer> answerOf(std::string_view line) noexcept {
    const auto* const word =
        std::find(kAlertAnswerWords.begin(), kAlertAnswerWords.end(), line);  // without line feed
    if (word == kAlertAnswerWords.end()) return std::nullopt;
    return static_cast<AlertAnswer>(word - kAlertAnswerWords.begin());
}

// Reads until the line feed. TimedOut too when the deadline passes first.
std::optional<AlertAnswer> readAnswer(int socket, const Deadline& deadline) noexcept {
    std::array<char, 16> text{};
    std::size_t length = 0;
    while (length < text.size()) {
        const WaitResult waited = waitFor(socket, POLLIN, deadline);
        if (waited == WaitResult::TimedOut) return AlertAnswer::TimedOut;
        if (waited == WaitResult::Failed) return std::nullopt;
        const ssize_t count =
            ::recv(socket, text.data() + length, text.size() - length, MSG_DONTWAIT);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count <= 0) return std::nullopt;
        length += static_cast<std::size_t>(count);
        const std::string_view received(text.data(), length);
        const std::size_t lineFeed = received.find('\n');
        if (lineFeed != std::string_view::npos) return answerOf(received.substr(0, lineFeed));
    }
    return std::nullopt;
}

// The environment variable `name` has a value.
bool isSet(const char* name) noexcept {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read at once, not kept
    return value != nullptr && *value != '\0';
}

}  // namespace

std::optional<AlertAnswer> askHelper(const Alert& alert, const char* program,
                                     Nanoseconds grace) noexcept {
    try {
        std::array<int, 2> ends{-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            return std::nullopt;
        }
        const Descriptor ours(ends[0]);
        Descriptor theirs(ends[1]);
        Arguments arguments(alert, program);

        const Deadline deadline(alert.timeout + grace);
        const pid_t child = SpawnSettings(theirs.number()).spawn(program, arguments.list());
        theirs.close();
        if (child < 0) return std::nullopt;

        const std::optional<AlertAnswer> answer = readAnswer(ours.number(), deadline);
        // Whoever has answered in time may close its window and end by itself.
        if (answer && !deadline.hasPassed()) {
            waitFor(ours.number(), POLLIN, Deadline(std::min(grace, seconds(1.0))));
        }
        endChild(child);
        return answer;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

std::optional<AlertAnswer> askInWindow(const Alert& alert) noexcept {
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) return std::nullopt;
    try {
        const std::string program = findAlertHelper();
        if (program.empty()) return std::nullopt;
        return askHelper(alert, program.c_str());
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace veltra
