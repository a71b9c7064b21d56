// SPDX-License-Identifier: MIT
// Texts put together at random, the same in each run.
#pragma once

#include <cstddef>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace veltra::testing {

struct MadeUpTexts {
    explicit MadeUpTexts(std::span<const std::string_view> pieces) : m_pieces(pieces) {}

    // Up to `most` pieces.
    std::string next(std::size_t most) {
        std::string text;
        for (std::size_t count = m_random() % (most + 1); count > 0; --count)
            text += m_pieces[m_random() % m_pieces.size()];
        return text;
    }

private:
    std::span<const std::string_view> m_pieces;
    std::mt19937 m_random{12345};
};

}  // namespace veltra::testing
