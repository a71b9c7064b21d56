// SPDX-License-Identifier: MIT
#include "veltra/ui/styled_text.h"

#include "veltra/base/utf8.h"
#include "veltra/ui/port.h"

namespace veltra {

namespace {

constexpr char kEllipsis[] = "\xE2\x80\xA6";

}  // namespace

std::optional<Font> Font::fontWithName(const std::string& name, float size, FontWeight weight,
                                       bool hasEqualDigits) {
    const bool isKnown = name.empty() || UiPort::current().hasFontFamily(name);
    if (!(size > 0.0F) || !isKnown) return std::nullopt;
    return Font{name, size, weight, hasEqualDigits};
}

Size StyledText::size() const {
    return UiPort::current().textSize(*this);
}

StyledText StyledText::truncatedTo(float width, TextTruncation truncation) const {
    if (size().width <= width) return *this;
    // With `kept` bytes of the text at most, 55 % of them before an ellipsis in the middle, and no
    // character in pieces.
    const auto cutTo = [&](std::size_t kept) {
        std::size_t head = truncation == TextTruncation::End ? kept : (kept * 11 + 10) / 20;
        std::size_t tail = string.size() - (kept - head);
        while (head > 0 && continuesCharacter(string[head]))
            --head;
        while (tail < string.size() && continuesCharacter(string[tail]))
            ++tail;
        StyledText cut = *this;
        cut.string = string.substr(0, head) + kEllipsis + string.substr(tail);
        return cut;
    };
    std::size_t fits = 0;
    std::size_t tooLong = string.size();
    while (fits + 1 < tooLong) {
        const std::size_t middle = fits + (tooLong - fits) / 2;
        if (cutTo(middle).size().width <= width) {
            fits = middle;
        } else {
            tooLong = middle;
        }
    }
    return cutTo(fits);
}

}  // namespace veltra
