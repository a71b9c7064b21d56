// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/child_program.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {

namespace {

class SpawnSettings {
public:
    SpawnSettings(int descriptor, ChildInput input) noexcept {
        m_hasActions = ::posix_spawn_file_actions_init(&m_actions) == 0;
        m_hasAttributes = ::posix_spawnattr_init(&m_attributes) == 0;
        if (m_hasActions && m_hasAttributes)
            m_isReady = redirect(descriptor, input) && resetSignals();
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        if (m_hasActions) ::posix_spawn_file_actions_destroy(&m_actions);
        if (m_hasAttributes) ::posix_spawnattr_destroy(&m_attributes);
    }

    pid_t spawn(const char* program, char* const* arguments,
                char* const* environment) const noexcept {
        pid_t child = -1;
        if (!m_isReady) return -1;
        const int error =
            ::posix_spawnp(&child, program, &m_actions, &m_attributes, arguments, environment);
        return error == 0 ? child : -1;
    }

private:
    // The host may have closed any of 0 to 2, so that the descriptor itself may have such a number:
    // it moves to 1 before anything is put on 0 and 2.
    bool redirect(int descriptor, ChildInput input) noexcept {
        posix_spawn_file_actions_t* const actions = &m_actions;
        int errors = ::posix_spawn_file_actions_adddup2(actions, descriptor, STDOUT_FILENO);
        errors |= input == ChildInput::SameAsOutput
                      ? ::posix_spawn_file_actions_adddup2(actions, STDOUT_FILENO, STDIN_FILENO)
                      : ::posix_spawn_file_actions_addopen(actions, STDIN_FILENO, "/dev/null",
                                                           O_RDONLY, 0);
        errors |=
            ::posix_spawn_file_actions_addopen(actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        errors |= ::posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1);
        return errors == 0;
    }

    bool resetSignals() noexcept {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        constexpr short kFlags =
            POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_RESETIDS;
        int errors = ::posix_spawnattr_setsigmask(&m_attributes, &none);
        errors |= ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        errors |= ::posix_spawnattr_setflags(&m_attributes, kFlags);
        return errors == 0;
    }

    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
    bool m_hasActions = false;
    bool m_hasAttributes = false;
    bool m_isReady = false;
};

}  // namespace

pid_t startProgram(const char* program, char* const* arguments, char* const* environment,
                   int descriptor, ChildInput input) noexcept {
    return SpawnSettings(descriptor, input).spawn(program, arguments, environment);
}

void endProgram(pid_t child) noexcept {
    siginfo_t information{};
    const auto id = static_cast<id_t>(child);
    if (::waitid(P_PID, id, &information, WEXITED | WNOHANG | WNOWAIT) == 0) {
        ::kill(child, SIGKILL);
    }
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace veltra
