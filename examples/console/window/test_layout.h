// SPDX-License-Identifier: MIT
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/keyboard_layout.h"

#include <string_view>

namespace veltra::console::testing {

// The keys of an American keyboard with Y and Z in German places.
class GermanKeys final : public veltra::testing::InForce<KeyboardLayout> {
    std::optional<KeyTranslation> translate(std::uint16_t keyCode) const noexcept override {
        constexpr std::u16string_view kTyped =
            u"asdfhgyxcv<bqwerzt123465=97-80]ou[ip\rlj'k;\\,/nm.";
        if (keyCode >= kTyped.size()) return std::nullopt;
        return KeyTranslation{std::u16string(1, kTyped[keyCode]), false};
    }
};

}  // namespace veltra::console::testing
