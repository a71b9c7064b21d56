// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/text_buffer.h"

#include "veltra/base/number_text.h"
#include "veltra/base/string_object_text.h"
#include "veltra/base/utf8.h"
#include "veltra/base/whole_characters.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace veltra {

TextBuffer::~TextBuffer() {
    if (m_text != m_memory) std::free(m_text);
}

std::size_t TextBuffer::makeRoom(std::size_t more) noexcept {
    if (more <= m_capacity - m_size || m_capacity >= kLongestText) return m_capacity - m_size;
    const std::size_t wanted = more > kLongestText - m_size
                                   ? kLongestText
                                   : std::clamp(m_capacity * 2, m_size + more, kLongestText);
    char* grown = static_cast<char*>(std::realloc(m_text != m_memory ? m_text : nullptr, wanted));
    if (grown == nullptr) return m_capacity - m_size;
    if (m_text == m_memory) std::memcpy(grown, m_memory, m_size);
    m_text = grown;
    m_capacity = wanted;
    return m_capacity - m_size;
}

void TextBuffer::appendGrowing(std::string_view text) noexcept {
    if (m_isCut) return;
    const std::size_t room = makeRoom(text.size());
    append(text.substr(0, room));
    if (room < text.size()) cut();
}

void TextBuffer::cut() noexcept {
    m_isCut = true;
    const bool isMarked = m_capacity > 2 * kCutMark.size();
    if (isMarked) m_size = std::min(m_size, m_capacity - kCutMark.size());
    m_size = wholeCharacters(view()).size();
    if (isMarked) m_size += kCutMark.copy(m_text + m_size, kCutMark.size());
}

void TextBuffer::appendCharacter(char32_t character) noexcept {
    const bool isSurrogate = isHighSurrogate(character) || isLowSurrogate(character);
    if (character > 0x10FFFF || isSurrogate) character = 0xFFFD;
    char bytes[4];
    putUtf8(bytes, character);
    append({bytes, utf8Length(character)});
}

void TextBuffer::appendString(const VLString* string) noexcept {
    if (m_isCut) return;
    const std::size_t length = utf8LengthOf(string);
    const std::size_t room = makeRoom(length);
    m_size += copyUtf8(string, m_text + m_size, room);
    if (room < length) cut();
}

void TextBuffer::appendDecimal(std::int64_t value, int digits) noexcept {
    const NumberText number(value);
    std::string_view text = number.view();
    const auto written = static_cast<int>(text.size());
    if (value < 0) {
        append("-");
        text.remove_prefix(1);
    }
    for (int missing = digits - written; missing > 0; --missing)
        append("0");
    append(text);
}

bool TextBuffer::appendFormat(const char* format, va_list arguments) noexcept {
    if (m_isCut) return true;
    va_list again;
    va_copy(again, arguments);
    std::size_t room = m_capacity - m_size;
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the analyser loses it between functions
    int needed = std::vsnprintf(m_text + m_size, room, format, arguments);
    // printf wants one byte more than the text has.
    if (needed >= 0 && static_cast<std::size_t>(needed) >= room) {
        const std::size_t grown = makeRoom(static_cast<std::size_t>(needed) + 1);
        if (grown > room) {
            room = grown;
            // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): and again
            needed = std::vsnprintf(m_text + m_size, room, format, again);
        }
    }
    va_end(again);
    if (needed < 0) return false;
    const std::size_t most = room > 0 ? room - 1 : 0;
    const auto length = static_cast<std::size_t>(needed);
    m_size += std::min(length, most);
    if (length > most) cut();
    return true;
}

void TextBuffer::collapsePercentPairs() noexcept {
    std::size_t kept = 0;
    for (std::size_t next = 0; next < m_size; ++next) {
        if (m_text[next] == '%' && next + 1 < m_size && m_text[next + 1] == '%') ++next;
        m_text[kept++] = m_text[next];
    }
    m_size = kept;
}

}  // namespace veltra
