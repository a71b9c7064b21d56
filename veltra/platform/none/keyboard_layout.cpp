// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"

namespace veltra {

namespace {

class NoKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<KeyTranslation> translate(std::uint16_t) const noexcept override {
        return std::nullopt;
    }
};

}  // namespace

const KeyboardLayout& platformKeyboardLayout() noexcept {
    static const Immortal<NoKeyboardLayout> layout;
    return *layout;
}

}  // namespace veltra
