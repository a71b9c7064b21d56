// SPDX-License-Identifier: MIT
// The text services of a build without a library for them: what each answers for nothing.
#pragma once

#include "veltra/platform/text_services.h"

namespace veltra {

class NoTextServices : public TextServices {
public:
    std::optional<std::size_t> toLegacy(std::u16string_view, char,
                                        std::span<char>) const noexcept override {
        return std::nullopt;
    }
    std::optional<std::u16string> fromLegacy(std::string_view) const noexcept override {
        return std::nullopt;
    }
};

}  // namespace veltra
