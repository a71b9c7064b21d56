// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/utf8_kernels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace veltra::kernels {

namespace {

// A long run goes in words, but only as far as a search for the NUL has seen that there is text.
std::size_t asciiLengthWithin(const char* text, std::size_t limit) noexcept {
    constexpr std::size_t kShort = 16;  // most runs between characters of other languages
    constexpr std::size_t kPiece = 256;
    constexpr std::uint64_t kTopBits = 0x8080'8080'8080'8080U;
    std::size_t length = 0;
    const auto reaches = [&](std::size_t end) {
        while (length<end&& static_cast<signed char>(text[length])> 0)
            ++length;
        return length == end;
    };
    if (!reaches(std::min(limit, kShort))) return length;
    for (bool isWhole = true; isWhole && length < limit;) {
        const std::size_t size = std::min(limit - length, kPiece);
        const void* const nul = std::memchr(text + length, 0, size);
        const std::size_t end =
            nul == nullptr ? length + size
                           : static_cast<std::size_t>(static_cast<const char*>(nul) - text);
        std::uint64_t word = 0;
        for (; end - length >= sizeof word; length += sizeof word) {
            std::memcpy(&word, text + length, sizeof word);
            if ((word & kTopBits) != 0) break;
        }
        isWhole = reaches(end) && nul == nullptr;
    }
    return length;
}

std::size_t asciiLength(const char* text) noexcept {
    return asciiLengthWithin(text, SIZE_MAX);
}

// 0 for what leads no sequence. Deliberately not the table of the copy: 0xFD and 0xFF lead none
// here, and hosts' stored checks depend on it.
std::size_t announcedLength(unsigned char byte) noexcept {
    if ((byte & 0xE0U) == 0xC0) return 2;
    if ((byte & 0xF0U) == 0xE0) return 3;
    if ((byte & 0xF8U) == 0xF0) return 4;
    if ((byte & 0xFCU) == 0xF8) return 5;
    if ((byte & 0xFDU) == 0xFC) return 6;
    return 0;
}

}  // namespace

bool checkUtf8Plainly(const char* text) noexcept {
    std::size_t expected = 0;  // where the next character must start
    bool isPending = false;    // a lead byte was seen, and no ASCII byte since
    std::size_t index = 0;
    for (; text[index] != '\0'; ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        if (byte < 0x80) {
            if (expected != index) return false;
            index += asciiLength(text + index) - 1;
            expected = index + 1;
            isPending = false;
        } else if ((byte & 0xC0U) == 0x80) {
            if (!isPending) return false;
        } else if (const std::size_t length = announcedLength(byte); length != 0) {
            expected = index + length;
            isPending = true;
        }
    }
    return expected == index;
}

const Utf8Kernels kUtf8Plain{asciiLength, asciiLengthWithin, checkUtf8Plainly};

}  // namespace veltra::kernels
