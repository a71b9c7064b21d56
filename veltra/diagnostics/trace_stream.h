// SPDX-License-Identifier: MIT
// Trace output for C++ callers: the frame around dumps of containers. Only the indentation is ever
// written; the other entry points are deliberately empty, and kept because traced programs call
// them.
#pragma once

#include "veltra/export.h"

#include <ostream>
#include <string>

namespace veltra {

// The kind of an assertion. All kinds are treated alike, and any value is allowed.
enum class TAssertType : int { Default = 0 };

// Empty: assertions that ask the user are dbgASSERT's.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void bbAssert(bool condition, const char* expression, const char* location,
                            TAssertType type, int* counter) noexcept;

// Empty: open and close an indented scope, and a container of `count` elements inside it.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void TraceOutIndentBegin(std::ostream& stream, const char* label,
                                       const std::string& name, int indent) noexcept;
VELTRA_EXPORT void TraceOutIndentEnd(std::ostream& stream) noexcept;
VELTRA_EXPORT void TraceOutContainerBegin(std::ostream& stream, const char* label, int count,
                                          const std::string& name, int indent) noexcept;
VELTRA_EXPORT void TraceOutContainerEnd(std::ostream& stream) noexcept;
VELTRA_EXPORT void TraceOutContainerEndl(std::ostream& stream) noexcept;

// Writes the indentation of the innermost open trace scope to std::cout: as many spaces as it is
// deep, 2048 at most, nothing when no scope is open. Errors of the stream are left in its state.
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT void IndentToCout() noexcept;

}  // namespace veltra
