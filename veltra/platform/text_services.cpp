// SPDX-License-Identifier: MIT
#include "veltra/platform/text_services.h"

#include "veltra/base/replaceable.h"
#include "veltra/platform/detail/platform_text_services.h"

namespace veltra {

namespace {

constinit Replaceable<const TextServices, &platformTextServices> replaceableTextServices;

}  // namespace

TextServices::~TextServices() = default;

std::optional<std::u16string> TextServices::toUpper(std::u16string_view) const noexcept {
    return std::nullopt;
}

const TextServices& TextServices::current() noexcept {
    return replaceableTextServices.current();
}

const TextServices* TextServices::install(const TextServices* services) noexcept {
    return replaceableTextServices.install(services);
}

}  // namespace veltra
