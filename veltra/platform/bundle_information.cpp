// SPDX-License-Identifier: MIT
#include "veltra/platform/bundle_information.h"

#include "veltra/base/immortal.h"
#include "veltra/base/installable_source.h"
#include "veltra/base/json_text.h"
#include "veltra/base/number_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/resources.h"

#include <cmath>
#include <mutex>
#include <utility>

namespace veltra {

namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

// Digits stay as they are written.
PropertyValue::Dictionary dictionaryFromFile() {
    const NoCancellation whileFilesAreRead;
    for (const std::string& folder : {executableFolder(), hostDataFolder()}) {
        if (folder.empty()) continue;
        const std::optional<std::string> text = textOfFile(folder + "/Info.json", kLargestFile);
        if (!text) continue;
        if (auto found = dictionaryFromJson(*text, JsonNumbers::AsDigits)) return *std::move(found);
    }
    return {};
}

std::string textFrom(const PropertyValue& value) {
    switch (value.kind()) {
        case PropertyValue::Kind::String:
            return std::string(value.asString());
        case PropertyValue::Kind::Integer:
            return std::string(NumberText(value.asInteger()).view());
        case PropertyValue::Kind::Real:
            if (!std::isfinite(value.asReal())) return {};
            return std::string(NumberText::shortest(value.asReal()).view());
        default:
            return {};
    }
}

class OwnBundleInformation final : public BundleInformation {
public:
    OwnBundleInformation() noexcept { m_lock.holdAcrossForks(); }

    std::string text(std::string_view key) const override {
        if (!isKnown()) {
            PropertyValue::Dictionary read = dictionaryFromFile();
            const std::lock_guard lock(m_lock);
            if (!m_dictionary) m_dictionary = std::move(read);
        }
        PropertyValue value;
        {
            const std::lock_guard lock(m_lock);
            if (!m_dictionary) return {};  // it was just given back
            const auto found = m_dictionary->find(key);
            if (found != m_dictionary->end()) value = found->second;
        }
        return textFrom(value);
    }

    void set(std::optional<PropertyValue::Dictionary> dictionary) noexcept {
        const std::lock_guard lock(m_lock);
        m_isHandedOver = dictionary.has_value();
        m_dictionary.swap(dictionary);
    }

    void set(std::string_view key, std::string_view text) {
        PropertyValue::Dictionary added;
        added.emplace(key, text);
        const std::lock_guard lock(m_lock);  // entries move only: nothing is allocated or freed
        if (!m_isHandedOver) {
            if (!m_dictionary) m_dictionary.emplace();
            m_dictionary->swap(added);
            m_isHandedOver = true;
        } else if (const auto found = m_dictionary->find(key); found != m_dictionary->end()) {
            std::swap(found->second, added.begin()->second);
        } else {
            m_dictionary->merge(added);
        }
    }

private:
    bool isKnown() const noexcept {
        const std::lock_guard lock(m_lock);
        return m_dictionary.has_value();
    }

    mutable ForkSafeLock m_lock;
    mutable std::optional<PropertyValue::Dictionary> m_dictionary;  // nothing: file not read yet
    bool m_isHandedOver = false;
};

OwnBundleInformation& ownBundleInformation() noexcept {
    static const Immortal<OwnBundleInformation> information;
    return *information;
}

}  // namespace

BundleInformation::~BundleInformation() = default;

template <>
struct OwnImplementation<const BundleInformation> : OwnFrom<ownBundleInformation> {};
template class Installable<const BundleInformation>;

void setBundleInformation(std::optional<PropertyValue::Dictionary> dictionary) noexcept {
    ownBundleInformation().set(std::move(dictionary));
}

bool setBundleInformationText(std::string_view key, std::string_view text) noexcept {
    return isDoneUnlessOutOfMemory([&] { ownBundleInformation().set(key, text); });
}

}  // namespace veltra
