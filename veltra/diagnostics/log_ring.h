// SPDX-License-Identifier: MIT
// The last lines of the log, in memory that is there from the start.
//
// Any thread adds lines and any thread reads them, a signal handler too: nobody locks or waits.
// Each line gets the next number and goes into the place of the line 64 numbers before. The state
// of a place tells readers which line it holds: 2 n + 1 while line n is written, 2 n + 2 once it is
// there. A writer takes a place by changing its state, from what it was to "being written"; when
// somebody else is writing there, who must be 64 lines behind, or has taken it for a later line,
// the line is lost. So there is one writer a place at any time. A reader copies a place and looks
// at the state before and after: when it is not "line n is there" both times, the copy is worthless
// and line n is left out. Texts are words that are read and written atomically, since readers may
// meet a writer.
//
// In a forked child a place stays "being written" when another thread was writing there at the
// fork: from then on the log remembers one line less.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltra {

class LogRing {
public:
    static constexpr std::size_t kLines = 64;
    static constexpr std::size_t kLongestLine = 246;  // bytes

    using Copy = std::array<char, kLongestLine>;

    // The line is the texts one after another, without a line feed at the end and with blanks for
    // the others; the rest is cut off between two characters.
    void add(std::string_view banner, std::string_view message) noexcept;

    // The numbers of the lines that may be there: from first() up to, not with, end(). Numbers
    // start again at 0 after the largest.
    std::size_t end() const noexcept;
    std::size_t first() const noexcept;

    // The line with that number, copied to `copy`; null data when it is not there.
    std::string_view read(std::size_t number, Copy& copy) const noexcept;

private:
    using Length = std::uint16_t;
    using Word = std::size_t;  // what every host reads and writes without a lock
    static constexpr std::size_t kWords = (sizeof(Length) + kLongestLine) / sizeof(Word);

    struct Place {
        std::atomic<std::size_t> state{0};
        std::array<std::atomic<Word>, kWords> words{};
    };

    std::atomic<std::size_t> m_next{0};
    std::array<Place, kLines> m_places{};
};

// The lines of this process.
LogRing& recentLogLines() noexcept;

}  // namespace veltra
