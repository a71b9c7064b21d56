// SPDX-License-Identifier: MIT
// A number as text, the same in every locale, without the heap:
//
//   text += NumberText(count).view();
//   text += NumberText::fixed(decibels, 1).view();       // "-3.5"
//
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string_view>

namespace veltra {

class NumberText {
public:
    explicit NumberText(std::integral auto number) noexcept {
        write([number](char* begin, char* end) { return std::to_chars(begin, end, number); });
    }

    // Without a prefix, in lower case.
    static NumberText hexadecimal(std::unsigned_integral auto number) noexcept {
        NumberText text;
        text.write(
            [number](char* begin, char* end) { return std::to_chars(begin, end, number, 16); });
        return text;
    }

    // The fewest digits that read back as the same number, as a decimal or with an exponent,
    // whichever is shorter.
    static NumberText shortest(std::floating_point auto number) noexcept {
        NumberText text;
        text.write([number](char* begin, char* end) { return std::to_chars(begin, end, number); });
        return text;
    }

    // With so many digits after the point, 0 to 6 of them, rounded as printf rounds.
    static NumberText fixed(double number, int decimals) noexcept {
        NumberText text;
        const int digits = std::clamp(decimals, 0, 6);
        text.write([number, digits](char* begin, char* end) {
            return std::to_chars(begin, end, number, std::chars_format::fixed, digits);
        });
        return text;
    }

    std::string_view view() const noexcept { return {m_text, m_length}; }

private:
    NumberText() noexcept = default;

    void write(auto convert) noexcept {
        m_length = static_cast<std::size_t>(convert(m_text, m_text + sizeof m_text).ptr - m_text);
    }

    // The longest: a sign, the 309 digits of the largest double, the point and six digits.
    char m_text[320];
    std::size_t m_length = 0;
};

}  // namespace veltra
