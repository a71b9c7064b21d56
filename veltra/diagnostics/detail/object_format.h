// SPDX-License-Identifier: MIT
// printf's conversions, and "%@" for string objects.
#pragma once

#include "veltra/diagnostics/text_buffer.h"

#include <cstdarg>
#include <string_view>

namespace veltra {

// Appends what `format` (UTF-8) makes of `arguments`: flags, width and precision (also "*"),
// arguments by position ("%2$d", up to the 64th), every length modifier. "%@" takes a string object
// or null, "%n" takes its argument and writes nothing. Copied as they stand: what is no conversion,
// what names an argument as another type than an earlier conversion did, what the C library
// refuses.
void appendObjectFormat(TextBuffer& text, std::string_view format, va_list arguments) noexcept;

}  // namespace veltra
