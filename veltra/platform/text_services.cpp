// SPDX-License-Identifier: MIT
#include "veltra/platform/text_services.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

TextServices::~TextServices() = default;

std::optional<std::u16string> TextServices::toUpper(std::u16string_view) const noexcept {
    return std::nullopt;
}

std::optional<std::u16string> TextServices::caseFolded(std::u16string_view) const noexcept {
    return std::nullopt;
}

std::optional<std::u16string> TextServices::decomposed(std::u16string_view) const noexcept {
    return std::nullopt;
}

bool TextServices::isCombining(char32_t) const noexcept {
    return false;
}

std::optional<bool> TextServices::matchesEmailPattern(std::u16string_view) const noexcept {
    return std::nullopt;
}

std::optional<std::u16string> TextServices::asciiHostName(std::u16string_view) const noexcept {
    return std::nullopt;
}

template <>
struct OwnImplementation<const TextServices> : OwnFrom<platformTextServices> {};
template class Installable<const TextServices>;

}  // namespace veltra
