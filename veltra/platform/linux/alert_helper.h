// SPDX-License-Identifier: MIT
// Asking through a helper program: a process of its own, so that the question does not depend on
// the state of a host in which something has just gone wrong.
#pragma once

#include "veltra/platform/alert.h"

#include <optional>

namespace veltra {

// Starts `program` (see alert_protocol.h) and waits for its answer; nothing when it cannot be
// started or ends without a proper one. A helper that is still silent `grace` after the
// time-out, or still there so long after its answer, is killed. No child is left behind, whatever
// the host does with SIGCHLD.
std::optional<AlertAnswer> askHelper(const Alert& alert, const char* program,
                                     Nanoseconds grace = seconds(2.0)) noexcept;

}  // namespace veltra
