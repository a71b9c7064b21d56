// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"

namespace veltra {

namespace {

class NoTextServices final : public TextServices {
public:
    std::optional<std::size_t> toLegacy(std::u16string_view, char,
                                        std::span<char>) const noexcept override {
        return std::nullopt;
    }
    std::optional<std::u16string> fromLegacy(std::string_view) const noexcept override {
        return std::nullopt;
    }
};

}  // namespace

const TextServices& platformTextServices() noexcept {
    static const Immortal<NoTextServices> services;
    return *services;
}

}  // namespace veltra
