// What must hold for every text, whoever makes it up: the unit test and the fuzz target share it.
#pragma once

#include "veltra/processor/detail/utf8_kernels.h"
#include "veltra/processor/utf8_text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

inline unsigned char byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

inline bool slowCheck(std::string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        if (byteAt(text, index) < 0x80) {
            ++index;
            continue;
        }
        std::size_t end = 0;  // of the sequence that was begun last in this run
        for (; index < text.size() && byteAt(text, index) >= 0x80; ++index) {
            const unsigned char byte = byteAt(text, index);
            const int ones = std::countl_one(byte);
            if (ones == 1 && end == 0) return false;
            if (ones > 1 && byte != 0xFD && byte != 0xFF)
                end = index + static_cast<std::size_t>(std::min(ones, 6));
        }
        if (end != index) return false;
    }
    return true;
}

// The whole buffer of `capacity` bytes.
inline std::string slowCopy(std::string_view text, std::size_t capacity) {
    std::string buffer;
    while (!text.empty() && std::countl_one(byteAt(text, 0)) == 1)
        text.remove_prefix(1);
    while (!text.empty()) {
        const int ones = std::clamp(std::countl_one(byteAt(text, 0)), 1, 6);
        const auto size = static_cast<std::size_t>(ones);
        if (buffer.size() + size > capacity) break;
        buffer += text.substr(0, size);
        text.remove_prefix(std::min(size, text.size()));
    }
    buffer.resize(capacity, '\0');
    return buffer;
}

// Empty when every function answers what the slow ones do, else the name of one that does not.
// `text` is NUL-terminated and has no other NUL.
inline std::string brokenLaw(std::string_view text) {
    const std::size_t ascii = static_cast<std::size_t>(
        std::find_if(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }) -
        text.begin());
    std::vector<std::size_t> sizes{0, 1, 2, text.size() / 2, ascii, ascii + 1, SIZE_MAX};
    for (std::size_t size = std::max<std::size_t>(text.size(), 9) - 9; size <= text.size() + 7;)
        sizes.push_back(size++);

    std::string broken;
    for (const Utf8Kernels* kernels : utf8KernelVariants()) {
        chooseUtf8Kernels(kernels->name);
        if (utf8_check(text.data()) != (slowCheck(text) ? 1 : 0)) broken = "check";
        if (utf8_strlen(text.data()) != ascii) broken = "strlen";
        for (const std::size_t size : sizes) {
            const std::size_t reach = std::min(size != 0 ? size : SIZE_MAX, text.size());
            if (utf8_is_ascii(text.data(), size) != (ascii >= reach ? 1 : 0)) broken = "is_ascii";
        }
        if (!broken.empty()) return broken + " " + kernels->name;
    }
    sizes.erase(std::find(sizes.begin(), sizes.end(), SIZE_MAX));
    for (const std::size_t size : sizes) {
        // On the heap to the byte, so that a sanitizer sees what is written outside.
        std::vector<char> buffer(size + 1, '#');
        utf8_strlcpy(buffer.data(), text.data(), size + 1);
        if (slowCopy(text, size) + '\0' != std::string(buffer.data(), size + 1)) return "strlcpy";
        buffer = std::vector<char>(size, '#');
        utf8_strncpy(buffer.data(), text.data(), size);
        if (slowCopy(text, size) != std::string(buffer.data(), size)) return "strncpy";
    }
    const VLString* string = utf8_to_cfstring(text.data());
    std::vector<char> again(text.size() * 3 + 1);
    utf8_from_cfstring(again.data(), string, again.size());
    VLStringRelease(string);
    return string != nullptr && text != again.data() ? "from_cfstring" : "";
}

}  // namespace veltra
