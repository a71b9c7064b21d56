// SPDX-License-Identifier: MIT
// The ways in which an alert can reach the user when the host has not brought a presenter.
#pragma once

#include "veltra/platform/alert.h"

#include <optional>
#include <span>

namespace veltra {

// Answers nothing when this way is not open, or fails before the user could answer.
using AlertWay = std::optional<AlertAnswer> (*)(const Alert& alert) noexcept;

// A window of the helper program, on the display that the environment names.
std::optional<AlertAnswer> askInWindow(const Alert& alert) noexcept;

// A numbered question on the controlling terminal, when this process may read from it.
std::optional<AlertAnswer> askOnTerminal(const Alert& alert) noexcept;

// Tries `ways` in turn until one has an answer; TimedOut when none has. What one way has used up of
// the time is missing from the next one's.
AlertAnswer askInTurn(const Alert& alert, std::span<const AlertWay> ways) noexcept;

}  // namespace veltra
