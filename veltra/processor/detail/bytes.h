// SPDX-License-Identifier: MIT
// Words in memory that need not be aligned, and their byte order.
//
// The functions have internal linkage: a file that is built for one processor variant must not
// lend its copy to the others.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltra::detail {

enum class ByteOrder { Big, Little };

inline constexpr ByteOrder kHostOrder =
    std::endian::native == std::endian::big ? ByteOrder::Big : ByteOrder::Little;

static constexpr std::uint8_t reversed(std::uint8_t value) noexcept {
    return value;
}

static constexpr std::uint16_t reversed(std::uint16_t value) noexcept {
    return static_cast<std::uint16_t>(value << 8 | value >> 8);
}

static constexpr std::uint32_t reversed(std::uint32_t value) noexcept {
    return value << 24 | (value & 0xFF00U) << 8 | (value >> 8 & 0xFF00U) | value >> 24;
}

static constexpr std::uint64_t reversed(std::uint64_t value) noexcept {
    return static_cast<std::uint64_t>(reversed(static_cast<std::uint32_t>(value))) << 32 |
           reversed(static_cast<std::uint32_t>(value >> 32));
}

template <class Word, ByteOrder order = kHostOrder>
static Word load(const unsigned char* bytes) noexcept {
    Word value;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (order != kHostOrder) value = reversed(value);
    return value;
}

template <class Word, ByteOrder order = kHostOrder>
static void store(unsigned char* bytes, Word value) noexcept {
    if constexpr (order != kHostOrder) value = reversed(value);
    std::memcpy(bytes, &value, sizeof value);
}

// Reverses the bytes of `count` words one after another; `destination` may be `source`.
template <class Word>
static void reverseWords(unsigned char* destination, const unsigned char* source,
                         std::size_t count) noexcept {
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t offset = sizeof(Word) * index;
        store<Word>(destination + offset, reversed(load<Word>(source + offset)));
    }
}

template <class Word>
static void reverse(unsigned char* bytes) noexcept {
    reverseWords<Word>(bytes, bytes, 1);
}

}  // namespace veltra::detail
