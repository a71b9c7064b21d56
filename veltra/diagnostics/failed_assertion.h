// SPDX-License-Identifier: MIT
// How the library's own code asserts.
#pragma once

#include <cstdint>

namespace veltra {

// What dbgASSERT() does with a condition that does not hold. Thread: any but audio; it waits for
// the user's answer. Realtime-safe: no.
int failAssertion(const char* expression, const char* location, std::int32_t* showCounter) noexcept;

}  // namespace veltra
