// SPDX-License-Identifier: MIT
#include "veltra/platform/localization.h"

#include "veltra/base/immortal.h"
#include "veltra/base/replaceable.h"

namespace veltra {

namespace {

class KeysThemselves final : public LocalizedStrings {
public:
    std::string stringForKey(std::string_view key) const override { return std::string(key); }
};

const LocalizedStrings& keysThemselves() noexcept {
    static const Immortal<KeysThemselves> strings;
    return *strings;
}

constinit Replaceable<const LocalizedStrings, &keysThemselves> s_strings;

}  // namespace

LocalizedStrings::~LocalizedStrings() = default;

const LocalizedStrings& LocalizedStrings::current() noexcept {
    return s_strings.current();
}

const LocalizedStrings* LocalizedStrings::install(const LocalizedStrings* strings) noexcept {
    return s_strings.install(strings);
}

std::string localizedString(std::string_view key) {
    return LocalizedStrings::current().stringForKey(key);
}

}  // namespace veltra
