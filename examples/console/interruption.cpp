// SPDX-License-Identifier: MIT
#include "interruption.h"

#include <atomic>

#include <signal.h>

namespace veltra::console {

namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // or a signal handler may not touch it

void remember(int) {
    interrupted.store(true, std::memory_order_relaxed);
}

}  // namespace

void listenForInterruption() {
    struct sigaction reaction {};
    reaction.sa_handler = &remember;
    reaction.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(SIGINT, &reaction, nullptr);
    ::sigaction(SIGTERM, &reaction, nullptr);
}

bool isInterrupted() noexcept {
    return interrupted.load(std::memory_order_relaxed);
}

}  // namespace veltra::console
