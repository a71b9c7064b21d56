// SPDX-License-Identifier: MIT
// Text that is put together piece by piece: in memory of the caller's, on the heap when it grows
// out of that. It is cut at kLongestText, or, when the heap gives nothing, at what fits: whoever
// logs that memory is out must be able to. A text that was cut ends in kCutMark, if that fits, and
// takes no more.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace veltra {

struct VLString;

inline constexpr std::size_t kLongestText = std::size_t{1} << 20;  // bytes, the mark included
inline constexpr std::string_view kCutMark = " [the rest was cut off]";

class TextBuffer {
public:
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    std::string_view view() const noexcept { return {m_text, m_size}; }
    bool isCut() const noexcept { return m_isCut; }

    void append(std::string_view text) noexcept {
        if (text.size() > m_capacity - m_size || m_isCut) {
            appendGrowing(text);
            return;
        }
        if (text.empty()) return;
        std::memcpy(m_text + m_size, text.data(), text.size());
        m_size += text.size();
    }

    // A character as UTF-8, U+FFFD for what is none.
    void appendCharacter(char32_t character) noexcept;

    // The text of a string object as UTF-8; nothing for null.
    void appendString(const VLString* string) noexcept;

    // At least `digits` digits, zeros in front; the sign counts as one of them.
    void appendDecimal(std::int64_t value, int digits = 1) noexcept;

    // What printf makes of it; false, and nothing appended, when printf fails.
    [[gnu::format(printf, 2, 0)]] bool appendFormat(const char* format, va_list arguments) noexcept;

    // Turns each "%%" into "%".
    void collapsePercentPairs() noexcept;

    // Keeps the first `size` bytes. REQUIRES: there are as many.
    void shorten(std::size_t size) noexcept { m_size = size; }

protected:
    TextBuffer(char* memory, std::size_t capacity) noexcept
        : m_memory(memory), m_text(memory), m_capacity(capacity) {}
    ~TextBuffer();

private:
    void appendGrowing(std::string_view text) noexcept;

    // How many more bytes fit, after trying to make room for `more`.
    std::size_t makeRoom(std::size_t more) noexcept;

    void cut() noexcept;

    char* const m_memory;
    char* m_text;
    std::size_t m_capacity;
    std::size_t m_size = 0;
    bool m_isCut = false;
};

template <std::size_t kCapacity>
class LocalTextBuffer final : public TextBuffer {
public:
    LocalTextBuffer() noexcept : TextBuffer(m_local, kCapacity) {}

private:
    char m_local[kCapacity];
};

}  // namespace veltra
