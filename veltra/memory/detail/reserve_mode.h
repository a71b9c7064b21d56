// SPDX-License-Identifier: MIT
// Which of the two modes this build's memory reserve works in.
#pragma once

#include "veltra/memory/detail/reserve_blocks.h"

namespace veltra::detail {

// No operation changes it; tests do, while nobody has entered.
extern ReserveMode reserveMode;

}  // namespace veltra::detail
