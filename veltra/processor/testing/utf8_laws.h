// SPDX-License-Identifier: MIT
// What must hold for every text, whoever makes it up: the unit test and the fuzz target share it.
#pragma once

#include "veltra/processor/detail/utf8_kernels.h"
#include "veltra/processor/utf8_text.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <string>
#include <vector>

namespace veltra {

// 1 for a continuation byte, else the length of the sequence that a byte starts when all leading
// ones count; 0 for ASCII.
inline std::size_t leadingOnes(char byte) {
    return static_cast<std::size_t>(std::countl_one(static_cast<unsigned char>(byte)));
}

inline bool slowCheck(std::string_view text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (leadingOnes(text[index]) == 0) continue;
        std::size_t end = 0;  // of the sequence that was begun last in this run
        for (; index < text.size() && leadingOnes(text[index]) != 0; ++index) {
            const std::size_t ones = leadingOnes(text[index]);
            if (ones == 1 && end == 0) return false;
            if (ones > 1 && text[index] != '\xFD' && text[index] != '\xFF')
                end = index + std::min<std::size_t>(ones, 6);
        }
        if (end != index) return false;
    }
    return true;
}

// The whole buffer of `capacity` bytes.
inline std::string slowCopy(std::string_view text, std::size_t capacity) {
    std::string buffer;
    while (!text.empty() && leadingOnes(text[0]) == 1)
        text.remove_prefix(1);
    while (!text.empty()) {
        const std::size_t size = std::clamp<std::size_t>(leadingOnes(text[0]), 1, 6);
        if (buffer.size() + size > capacity) break;
        buffer += text.substr(0, size);
        text.remove_prefix(std::min(size, text.size()));
    }
    buffer.resize(capacity, '\0');
    return buffer;
}

// What a string object of a well-formed text gives: `capacity` - 1 units, then bytes.
inline std::string slowCopyOfObject(std::string_view text, std::size_t capacity) {
    std::string buffer;
    for (std::size_t units = capacity - 1; !text.empty() && units > 0;) {
        const std::size_t size = std::max<std::size_t>(leadingOnes(text[0]), 1);
        const bool isPairCut = size == 4 && units == 1;
        if (buffer.size() + (isPairCut ? 1 : size) > capacity - 1) break;
        buffer += isPairCut ? "?" : text.substr(0, size);
        units -= size == 4 && !isPairCut ? 2 : 1;
        text.remove_prefix(size);
    }
    return buffer;
}

// Empty when every function answers what the slow ones do, else the name of one that does not.
// `text` is NUL-terminated and has no other NUL.
inline std::string brokenLaw(std::string_view text) {
    const auto ascii = static_cast<std::size_t>(
        std::find_if(text.begin(), text.end(), leadingOnes) - text.begin());
    std::vector<std::size_t> sizes{1, text.size() / 2, ascii, ascii + 1};
    for (std::size_t size = text.size() + 8; size-- > 0 && size + 9 > text.size();)
        sizes.push_back(size);
    KernelFamily& family = detail::utf8Kernels;
    for (std::size_t i = 0; i < family.variantCount(); ++i) {
        const std::string name = family.variantName(i);
        if (!family.runs(i)) continue;
        if (!family.use(name) || family.inForce() != name) return "choice of " + name;
        if ((utf8_check(text.data()) == 1) != slowCheck(text)) return "check " + name;
        if (utf8_strlen(text.data()) != ascii) return "strlen " + name;
        for (const std::size_t size : sizes) {
            const bool isAscii = ascii >= (size != 0 ? std::min(size, text.size()) : text.size());
            if ((utf8_is_ascii(text.data(), size) == 1) != isAscii) return "is_ascii " + name;
        }
        if (utf8_is_ascii(text.data(), SIZE_MAX) != utf8_is_ascii(text.data(), 0))
            return "is_ascii without end, " + name;
    }
    family.useBest();
    const std::unique_ptr<const VLString, decltype(&VLStringRelease)> object(
        utf8_to_cfstring(text.data()), &VLStringRelease);
    for (const std::size_t size : sizes) {
        // On the heap to the byte, so that a sanitizer sees what is written outside.
        std::vector<char> buffer(size, '#'), terminated(size + 1, '#');
        utf8_strncpy(buffer.data(), text.data(), size);
        utf8_strlcpy(terminated.data(), text.data(), size + 1);
        const std::string expected = slowCopy(text, size);
        if (std::string(buffer.begin(), buffer.end()) != expected) return "strncpy";
        if (std::string(terminated.begin(), terminated.end()) != expected + '\0') return "strlcpy";
        for (const std::size_t distance : {0U, 1U, 9U}) {
            std::string both(std::max(size, distance + text.size() + 1), '\0');
            text.copy(&both[distance], text.size());
            utf8_strncpy(both.data(), &both[distance], size);
            if (both.compare(0, size, expected) != 0) return "strncpy over itself";
        }
        if (object == nullptr || size == 0) continue;
        utf8_from_cfstring(buffer.data(), object.get(), size);
        if (buffer.data() != slowCopyOfObject(text, size)) return "from_cfstring";
    }
    return "";
}

}  // namespace veltra
