// SPDX-License-Identifier: MIT
// Runs what is meant to end its process, and keeps what it logged.
#pragma once

#include <csignal>
#include <cstdio>
#include <string>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra::testing {

struct EndedChild {
    int status = 0;
    std::string log;  // its standard error

    bool wasKilledBy(int signal) const { return WIFSIGNALED(status) && WTERMSIG(status) == signal; }
    bool hasExited(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
};

// `body` runs in a forked child without core file, which exits with 0 when it returns.
template <typename Body>
EndedChild endedChild(Body body) {
    const int file = ::memfd_create("log", 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit none{};
        ::setrlimit(RLIMIT_CORE, &none);
        ::alarm(60);
        ::dup2(file, STDERR_FILENO);
        body();
        ::_exit(0);
    }
    EndedChild ended;
    ::waitpid(child, &ended.status, 0);
    ended.log.resize(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)));
    if (::pread(file, ended.log.data(), ended.log.size(), 0) < 0) ended.log = "unreadable";
    ::close(file);
    return ended;
}

}  // namespace veltra::testing
