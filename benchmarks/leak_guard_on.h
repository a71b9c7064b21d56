// SPDX-License-Identifier: MIT
// Preferences that switch the leak guard on.
#pragma once

#include "veltra/platform/preferences.h"

struct GuardOn final : veltra::Preferences {
    veltra::PropertyValue value(std::string_view key) const noexcept override {
        return key == "LeakGuardEnabled" ? veltra::PropertyValue(true) : veltra::PropertyValue();
    }
    bool setValue(std::string_view /*key*/,
                  const veltra::PropertyValue& /*value*/) noexcept override {
        return false;
    }
    std::error_code synchronise() noexcept override { return {}; }
    std::error_code reload() noexcept override { return {}; }
};
