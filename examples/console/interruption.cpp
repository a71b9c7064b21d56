// SPDX-License-Identifier: MIT
#include "interruption.h"

#include <atomic>

#include <signal.h>

namespace veltra::console {

namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // or a signal handler may not touch it

void setReaction(void (*handler)(int)) {
    struct sigaction reaction {};
    reaction.sa_handler = handler;
    ::sigaction(SIGINT, &reaction, nullptr);
    ::sigaction(SIGTERM, &reaction, nullptr);
}

// The next one ends the process, whichever of the two it is.
void remember(int) {
    interrupted.store(true, std::memory_order_relaxed);
    setReaction(SIG_DFL);
}

}  // namespace

void listenForInterruption() {
    setReaction(&remember);
}

bool isInterrupted() noexcept {
    return interrupted.load(std::memory_order_relaxed);
}

}  // namespace veltra::console
