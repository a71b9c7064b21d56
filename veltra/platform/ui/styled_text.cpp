#include "veltra/platform/ui/styled_text.h"

#include "veltra/platform/ui/port.h"

namespace veltra {

namespace {

constexpr char kEllipsis[] = "\xE2\x80\xA6";

bool continuesCharacter(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

std::optional<Font> Font::fontWithName(const std::string& name, float size) {
    if (!(size > 0.0F) || !UiPort::current().hasFontFamily(name)) return std::nullopt;
    return Font{name, size};
}

Size StyledText::size() const {
    return UiPort::current().textSize(*this);
}

StyledText StyledText::truncatedTo(float width) const {
    if (size().width <= width) return *this;
    const auto cutAt = [this](std::size_t length) {
        StyledText cut = *this;
        cut.string = string.substr(0, length) + kEllipsis;
        return cut;
    };
    const auto back = [this](std::size_t length) {  // to the beginning of a character
        while (length > 0 && continuesCharacter(string[length]))
            --length;
        return length;
    };
    std::size_t fits = 0;
    std::size_t tooLong = string.size();
    while (fits + 1 < tooLong) {
        const std::size_t middle = back(fits + (tooLong - fits) / 2);
        if (middle <= fits) break;  // one character of several bytes is left
        (cutAt(middle).size().width <= width ? fits : tooLong) = middle;
    }
    return cutAt(fits);
}

}  // namespace veltra
