// SPDX-License-Identifier: MIT
// printf's conversions, made the same way in every locale.
#pragma once

#include "veltra/diagnostics/text_buffer.h"

#include <cstdarg>
#include <string_view>

namespace veltra::detail {

// Whether "%@" takes a string object.
enum class Objects { No, Yes };

// Appends what `format` (UTF-8) makes of `arguments`: flags, width and precision (also "*"),
// arguments by position ("%2$d", up to the 128th), every length modifier; log.h says what the
// conversions are. Wide text becomes UTF-8. "%n" takes its argument and writes nothing.
//
// From the first conversion on that is not understood, or whose position leaves one before it
// unnamed, the rest is copied as it stands: nobody knows which argument would be whose. A single
// conversion is copied where its argument was named as another type before, or where the C library
// refuses it.
void appendMessage(TextBuffer& text, std::string_view format, Objects objects,
                   va_list arguments) noexcept;

}  // namespace veltra::detail
