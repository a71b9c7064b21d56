// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/symboliser.h"

#include "veltra/base/immortal.h"
#include "veltra/base/number_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/linux/child_program.h"
#include "veltra/platform/linux/deadline.h"
#include "veltra/platform/linux/descriptor.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr Nanoseconds kPatience = seconds(10.0);
constexpr std::size_t kMostAddresses = 512;
constexpr std::size_t kLongestAnswer = std::size_t{1} << 20;

// With it set, the program would ask servers on the network.
constexpr std::string_view kServers = "DEBUGINFOD_URLS=";

std::vector<std::string> argumentsFor(const char* program,
                                      std::span<const std::uintptr_t> addresses) {
    std::vector<std::string> arguments{program, "-f", "-C", "-i", "-a", "-p"};
    arguments.emplace_back(NumberText(Process::current().processId()).view());
    for (const std::uintptr_t address : addresses.first(std::min(addresses.size(), kMostAddresses)))
        arguments.push_back("0x" + std::string(NumberText::hexadecimal(address).view()));
    return arguments;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<char*> environmentWithoutServers() {
    std::vector<char*> variables;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable)
        if (!std::string_view(*variable).starts_with(kServers)) variables.push_back(*variable);
    variables.push_back(nullptr);
    return variables;
}

// Also where the host leaves no status to be read.
bool hasEnded(pid_t child) noexcept {
    siginfo_t information{};
    const int flags = WEXITED | WNOHANG | WNOWAIT;
    return ::waitid(P_PID, static_cast<id_t>(child), &information, flags) != 0 ||
           information.si_pid != 0;
}

// What comes until the other end is closed, the child has ended, or the deadline. The end of the
// child matters, too: what the host forks in this moment holds the other end open.
void readAll(int descriptor, pid_t child, const Deadline& deadline, std::string& text) {
    constexpr Nanoseconds kGlance = milliseconds(50);
    std::array<char, 4096> part{};
    Nanoseconds patience = deadline.timeLeft();  // ends also where the clock stands still
    while (text.size() < kLongestAnswer && patience > Nanoseconds() && !deadline.hasPassed()) {
        const bool isAllThere = hasEnded(child);
        const Nanoseconds time =
            isAllThere ? Nanoseconds() : std::min(kGlance, deadline.timeLeft());
        const WaitResult result = waitFor(descriptor, POLLIN, Deadline(time));
        if (result == WaitResult::TimedOut && !isAllThere) {
            patience = patience - time;
            continue;
        }
        if (result != WaitResult::Ready) return;
        const ssize_t count = ::read(descriptor, part.data(), part.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        text.append(part.data(), static_cast<std::size_t>(count));
    }
}

class Program {
public:
    explicit Program(pid_t child) noexcept : m_child(child) {}
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() { endProgram(m_child); }

private:
    const pid_t m_child;
};

std::string answerOf(const char* program, std::span<const std::uintptr_t> addresses,
                     Nanoseconds time) {
    std::vector<std::string> texts = argumentsFor(program, addresses);
    const std::vector<char*> arguments = pointersTo(texts);
    const std::vector<char*> environment = environmentWithoutServers();
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
    const Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    const Deadline deadline(time);
    const pid_t child = startProgram(program, arguments.data(), environment.data(), theirs.number(),
                                     ChildInput::Nothing);
    theirs.close();
    if (child < 0) return {};
    const Program running(child);
    std::string answer;
    readAll(ours.number(), child, deadline, answer);
    return answer;
}

class LinuxSymboliser final : public Symboliser {
public:
    std::string symbolise(std::span<const std::uintptr_t> addresses) noexcept override {
        if (Process::current().isSetUserOrGroupId()) return {};
        return symbolisedBy("eu-addr2line", addresses, kPatience);
    }
};

}  // namespace

std::string symbolisedBy(const char* program, std::span<const std::uintptr_t> addresses,
                         Nanoseconds time) noexcept {
    if (addresses.empty()) return {};  // the program would read them from its input
    const NoCancellation whileItRuns;
    return unlessOutOfMemory(std::string(), [&] { return answerOf(program, addresses, time); });
}

Symboliser& platformSymboliser() noexcept {
    static Immortal<LinuxSymboliser> symboliser;
    return *symboliser;
}

}  // namespace veltra
