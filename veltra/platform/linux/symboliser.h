// SPDX-License-Identifier: MIT
#pragma once

#include "veltra/base/time.h"

#include <cstdint>
#include <span>
#include <string>

namespace veltra {

// What `program` (a path, or a name to be looked for in PATH), started as "eu-addr2line -p PID"
// with the addresses, writes to its standard output within `time`. Empty when it cannot be started
// or memory is out. Its exit status says nothing: it is 1 as soon as one address is unknown.
std::string symbolisedBy(const char* program, std::span<const std::uintptr_t> addresses,
                         Nanoseconds time) noexcept;

}  // namespace veltra
