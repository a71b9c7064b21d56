// SPDX-License-Identifier: MIT
// Puts leaks together that have the same cause.
#pragma once

#include "veltra/memory/detail/leak_guard_history.h"

namespace veltra::detail {

// Of records that are linked by `next`, one for each stack is left, with the bytes and blocks of
// all that had it; the others are handed to `dispose`. Linked by `next`, most bytes first; those of
// equal size stay in the order of their first. Allocates nothing: memory may be what is short.
LeakRecord* groupByStack(LeakRecord* records, void (*dispose)(LeakRecord*) noexcept) noexcept;

}  // namespace veltra::detail
