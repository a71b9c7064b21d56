// SPDX-License-Identifier: MIT
#include "veltra/platform/termination.h"

#include <atomic>
#include <csignal>

namespace veltra {

namespace {

std::atomic<Terminator> installedTerminator{nullptr};

}  // namespace

Terminator installTerminator(Terminator terminator) noexcept {
    return installedTerminator.exchange(terminator, std::memory_order_acq_rel);  // with below
}

void askToTerminate() noexcept {
    const Terminator terminator =
        installedTerminator.load(std::memory_order_acquire);  // with above
    if (terminator != nullptr) {
        terminator();
    } else {
        std::raise(SIGTERM);
    }
}

}  // namespace veltra
