// SPDX-License-Identifier: MIT
#include "veltra/platform/text_services.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

TextServices::~TextServices() = default;

std::optional<std::u16string> TextServices::toUpper(std::u16string_view) const noexcept {
    return std::nullopt;
}

template <>
struct OwnImplementation<const TextServices> : OwnFrom<platformTextServices> {};
template class Installable<const TextServices>;

}  // namespace veltra
