// SPDX-License-Identifier: MIT
#include "veltra/platform/localization.h"

#include "veltra/base/immortal.h"
#include "veltra/base/installable_source.h"

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

}  // namespace

LocalizedStrings::~LocalizedStrings() = default;

template <>
struct OwnImplementation<const LocalizedStrings> : OwnFrom<keysThemselves> {};
template class Installable<const LocalizedStrings>;

std::string localizedString(std::string_view key) {
    return LocalizedStrings::current().stringForKey(key);
}

}  // namespace veltra
