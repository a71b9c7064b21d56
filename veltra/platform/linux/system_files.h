// SPDX-License-Identifier: MIT
// The system's own text files: those of /proc and /sys, and what stands in /etc. They are read
// through MemorySystem::read(), so that a test can put texts of its own in their place.
//
// Thread: any. Realtime-safe: no.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// The lines of a file, without their ends; those that are longer than the buffer are left out.
// Allocates nothing.
class SystemFileLines {
public:
    explicit SystemFileLines(const char* path) noexcept : m_path(path) {}

    // False at the end, at once for a file that cannot be read. The line is good until the next
    // call.
    bool next(std::string_view& line) noexcept;

private:
    void fill(std::string_view kept) noexcept;

    const char* const m_path;
    std::array<char, 4096> m_text;
    std::size_t m_start = 0;
    std::size_t m_end = 0;
    std::size_t m_offset = 0;
    bool m_isAtEnd = false;
};

// Takes the first word off `text`, with the separators before it. Empty when there is none.
std::string_view takeWord(std::string_view& text, std::string_view separators) noexcept;

// The number that `text` begins with after blanks, times `unit`; the largest one when it is too
// large; nothing for anything else.
std::optional<std::uint64_t> numberAtStartOf(std::string_view text,
                                             std::uint64_t unit = 1) noexcept;

// The number behind `key` and a blank at the start of a line; without a key, at the start of the
// first line.
std::optional<std::uint64_t> numberInSystemFile(const char* path, std::string_view key = {},
                                                std::uint64_t unit = 1) noexcept;

// What stands behind the colon in the first line "key : value"; nothing without such a line.
// Throws std::bad_alloc.
std::optional<std::string> fieldInSystemFile(const char* path, std::string_view key);

// The first line, trimmed; nothing when the file cannot be read. Throws std::bad_alloc.
std::optional<std::string> firstLineOfSystemFile(const char* path);

// The whole lines among the first `limit` bytes, with the last one also when no line end follows it
// in the file. Nothing when the file cannot be read. Throws std::bad_alloc.
std::optional<std::string> textOfSystemFile(const char* path, std::size_t limit);

}  // namespace veltra
