// SPDX-License-Identifier: MIT
// Runs a part of a test in a forked child: what must not end, stop or change the test program.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace veltra::testing {

// Whether `body` answered true there. An alarm ends a child that hangs.
template <typename Body>
bool holdsInChild(Body body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        ::_exit(body() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0;
}

}  // namespace veltra::testing
