// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_helper.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/whole_characters.h"
#include "veltra/platform/alert_protocol.h"
#include "veltra/platform/linux/alert_helper_search.h"
#include "veltra/platform/linux/alert_ways.h"
#include "veltra/platform/linux/child_program.h"
#include "veltra/platform/linux/deadline.h"
#include "veltra/platform/linux/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
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
                  "--timeout=" + std::to_string(alert.timeout.wholeMilliseconds()),
                  alert.style == AlertStyle::Critical ? "--critical" : "--plain"} {
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

    static constexpr std::size_t kCount = 9;
    std::array<std::string, kCount> m_texts;
    std::array<char*, kCount + 1> m_pointers{};
};

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
    return unlessOutOfMemory(std::nullopt, [&]() -> std::optional<AlertAnswer> {
        std::array<int, 2> ends{-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            return std::nullopt;
        }
        const Descriptor ours(ends[0]);
        Descriptor theirs(ends[1]);
        Arguments arguments(alert, program);

        const Deadline deadline(alert.timeout + grace);
        const pid_t child = startProgram(program, arguments.list(), environ, theirs.number(),
                                         ChildInput::SameAsOutput);
        theirs.close();
        if (child < 0) return std::nullopt;

        const std::optional<AlertAnswer> answer = readAnswer(ours.number(), deadline);
        // Whoever has answered in time may close its window and end by itself.
        if (answer && !deadline.hasPassed()) {
            waitFor(ours.number(), POLLIN, Deadline(std::min(grace, seconds(1.0))));
        }
        endProgram(child);
        return answer;
    });
}

std::optional<AlertAnswer> askInWindow(const Alert& alert) noexcept {
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) return std::nullopt;
    return unlessOutOfMemory(std::nullopt, [&]() -> std::optional<AlertAnswer> {
        const std::string program = findAlertHelper();
        if (program.empty()) return std::nullopt;
        return askHelper(alert, program.c_str());
    });
}

}  // namespace veltra
