// SPDX-License-Identifier: MIT
// The text services of a build without any, in force while they live.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/text_services.h"

namespace veltra::testing {

struct PlainTextServices final : InForce<TextServices> {
    std::optional<std::size_t> toLegacy(std::u16string_view, char,
                                        std::span<char>) const noexcept override {
        return std::nullopt;
    }
    std::optional<std::u16string> fromLegacy(std::string_view) const noexcept override {
        return std::nullopt;
    }
};

}  // namespace veltra::testing
