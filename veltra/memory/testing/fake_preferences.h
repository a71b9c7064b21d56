// SPDX-License-Identifier: MIT
// Preferences that live in the test; in force while they live.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/preferences.h"

namespace veltra::testing {

class FakePreferences final : public InForce<Preferences> {
public:
    PropertyValue value(std::string_view key) const noexcept override { return stored[key]; }
    bool setValue(std::string_view key, const PropertyValue& value) noexcept override {
        stored = stored.settingValueAtPath({key}, value);
        return true;
    }
    std::error_code synchronise() noexcept override { return ++synchronised, std::error_code(); }
    std::error_code reload() noexcept override { return {}; }

    PropertyValue stored;
    int synchronised = 0;
};

}  // namespace veltra::testing
