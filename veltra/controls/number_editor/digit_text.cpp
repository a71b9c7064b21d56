// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/digit_text.h"

#include "veltra/base/number_text.h"
#include "veltra/base/utf8.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr std::size_t kSpacesBehind = 16;
constexpr float kEditingInset = 1.5F;
constexpr float kEditingRadius = 0.125F;  // of the height

std::string padded(std::size_t count, char with, std::string_view text) {
    std::string result(count > text.size() ? count - text.size() : 0, with);
    return result += text;
}

}  // namespace

std::string withDigitTyped(std::string_view text, char digit, std::uint32_t longest) {
    std::string typed(text);
    typed += digit;
    if (typed.size() > longest) typed.erase(0, typed.size() - longest);
    return typed;
}

std::string withoutLastCharacter(std::string_view text) {
    while (!text.empty() && continuesCharacter(text.back()))
        text.remove_suffix(1);
    if (!text.empty()) text.remove_suffix(1);
    return std::string(text);
}

std::string zeroPadded(std::int32_t number, std::uint32_t places) {
    const NumberText text(number);
    std::string_view digits = text.view();
    std::size_t count = std::min(places, kMostLeadingZeros);
    std::string sign;
    if (number < 0) {
        sign = "-";
        digits.remove_prefix(1);
        count -= std::min<std::size_t>(count, 1);
    }
    return sign + padded(count, '0', digits);
}

SplitDigits splitLeadingZeros(std::string_view digits) noexcept {
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
    return {digits.substr(0, zeros), digits.substr(zeros)};
}

std::string shadowEights(std::uint32_t count) {
    return std::string(std::min(count, kMostShadowEights), '8');
}

std::string linedUpWithEights(std::int32_t number, std::uint32_t eights, TextAlignment alignment) {
    const std::size_t count = std::min(eights, kMostShadowEights);
    const NumberText digits(number);
    if (alignment != TextAlignment::Left) return padded(count, ' ', digits.view());
    std::string text(digits.view());
    text.append(kSpacesBehind, ' ');
    return text.substr(0, count);
}

Rect digitRect(const Rect& frame, float lineHeight, const DigitInsets& insets) noexcept {
    const float middle = frame.size.height * 0.5F - lineHeight * 0.5F;
    return {{frame.minX() + insets.left, insets.vertical + std::ceil(middle)},
            {frame.size.width - (insets.left + insets.right),
             std::min(lineHeight, frame.size.height - 2.0F * insets.vertical)}};
}

Rect editingRect(const Rect& frame) noexcept {
    return frame.inset(kEditingInset, kEditingInset);
}

float editingRadius(const Rect& frame) noexcept {
    return frame.size.height * kEditingRadius;
}

}  // namespace veltra
