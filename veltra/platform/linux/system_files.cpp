// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/system_files.h"

#include "veltra/base/text_parts.h"
#include "veltra/platform/memory_system.h"

#include <algorithm>
#include <charconv>

namespace veltra {

bool SystemFileLines::next(std::string_view& line) noexcept {
    for (bool isTooLong = false;;) {
        const std::string_view rest(m_text.data() + m_start, m_end - m_start);
        const std::size_t length = rest.find('\n');
        if (length != std::string_view::npos) {
            m_start += length + 1;
            line = rest.substr(0, length);
            if (!isTooLong) return true;
            isTooLong = false;
            continue;
        }
        if (m_isAtEnd) {
            m_start = m_end;
            line = rest;
            return !rest.empty() && !isTooLong;
        }
        isTooLong = isTooLong || rest.size() == m_text.size();
        fill(isTooLong ? std::string_view() : rest);
    }
}

void SystemFileLines::fill(std::string_view kept) noexcept {
    std::copy(kept.begin(), kept.end(), m_text.begin());
    const std::span<char> room = std::span(m_text).subspan(kept.size());
    const std::ptrdiff_t size = MemorySystem::current().read(m_path, m_offset, room);
    m_isAtEnd = size <= 0;
    m_start = 0;
    m_end = kept.size() + (m_isAtEnd ? 0 : static_cast<std::size_t>(size));
    m_offset += m_end - kept.size();
}

std::string_view takeWord(std::string_view& text, std::string_view separators) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(separators));
    text.remove_prefix(word.size());
    return word;
}

std::optional<std::uint64_t> numberAtStartOf(std::string_view text, std::uint64_t unit) noexcept {
    const std::string_view word = takeWord(text, " \t");
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error == std::errc::result_out_of_range) return UINT64_MAX;
    if (error != std::errc() || end != word.data() + word.size()) return {};
    std::uint64_t bytes = 0;
    return __builtin_mul_overflow(value, unit, &bytes) ? UINT64_MAX : bytes;
}

std::optional<std::uint64_t> numberInSystemFile(const char* path, std::string_view key,
                                                std::uint64_t unit) noexcept {
    SystemFileLines lines(path);
    for (std::string_view line; lines.next(line);) {
        if (!line.starts_with(key)) continue;
        line.remove_prefix(key.size());
        if (!key.empty() && !line.starts_with(' ') && !line.starts_with('\t')) continue;
        return numberAtStartOf(line, unit);
    }
    return {};
}

std::optional<std::string> fieldInSystemFile(const char* path, std::string_view key) {
    SystemFileLines lines(path);
    for (std::string_view line; lines.next(line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || trimmed(line.substr(0, colon)) != key) continue;
        return std::string(trimmed(line.substr(colon + 1)));
    }
    return {};
}

std::optional<std::string> firstLineOfSystemFile(const char* path) {
    std::array<char, 1> some{};
    if (MemorySystem::current().read(path, 0, some) < 0) return {};
    std::string_view line;
    return SystemFileLines(path).next(line) ? std::string(trimmed(line)) : std::string();
}

std::optional<std::string> textOfSystemFile(const char* path, std::size_t limit) {
    std::string text(limit + 1, '\0');
    const std::ptrdiff_t size = MemorySystem::current().read(path, 0, text);
    if (size < 0) return {};
    const bool isCut = static_cast<std::size_t>(size) > limit;
    text.resize(std::min(static_cast<std::size_t>(size), limit));
    if (isCut) text.resize(text.rfind('\n') + 1);
    return text;
}

}  // namespace veltra
