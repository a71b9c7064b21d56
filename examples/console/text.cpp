// SPDX-License-Identifier: MIT
#include "text.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace veltra::console {

std::string printable(std::string_view text) {
    std::string result(text);
    for (char& character : result) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x20 || code == 0x7F) character = '?';
    }
    return result;
}

std::string formatted(const char* format, ...) {
    std::array<char, 256> buffer{};
    std::va_list arguments;
    va_start(arguments, format);
    // The analyzer does not see va_start through the attribute.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}

}  // namespace veltra::console
