// SPDX-License-Identifier: MIT
// Timers in a host that waits in poll(), as for its devices and connections.
#include "examples/timers/metronome.h"
#include "veltra/platform/poll_run_loop.h"

#include <array>

#include <poll.h>
#include <unistd.h>

int main() {
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);
    bool isRunning = true;
    Metronome metronome([&isRunning] { isRunning = false; });

    std::array<pollfd, 2> watched{{{loop.descriptor(), POLLIN, 0}, {STDIN_FILENO, 0, 0}}};
    while (isRunning) {
        if (::poll(watched.data(), watched.size(), -1) < 0) continue;  // a signal
        if (watched[0].revents != 0) loop.runDue();
        // and what the host does about its own descriptors
    }
    return metronome.isDone() ? 0 : 1;
}
