// SPDX-License-Identifier: MIT
// What kind of exception is being handled.
#pragma once

#include <array>

namespace veltra {

// The type of the exception that the calling thread is handling, as it is written in C++, with a
// NUL at its end and cut where it is longer. Empty when there is none, or one of another language.
// Thread: any. Realtime-safe: no.
std::array<char, 256> currentExceptionType() noexcept;

}  // namespace veltra
