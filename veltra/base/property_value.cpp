// SPDX-License-Identifier: MIT
#include "veltra/base/property_value.h"

#include "veltra/base/ascii_case.h"
#include "veltra/base/immortal.h"
#include "veltra/base/text_parts.h"
#include "veltra/base/well_formed_utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace veltra {

struct PropertyValue::ArrayNode {
    Array items;
    std::uint32_t depth;
};

struct PropertyValue::DictionaryNode {
    Dictionary members;
    std::uint32_t depth;
};

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

template <class Number>
std::optional<Number> numberFrom(std::string_view text) noexcept {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end || text.empty()) return std::nullopt;
    return number;
}

std::optional<bool> truthFrom(std::string_view text) noexcept {
    struct Word {
        std::string_view text;
        bool meaning;
    };
    static constexpr std::array kWords{
        Word{"true", true},   Word{"yes", true}, Word{"1", true},
        Word{"false", false}, Word{"no", false}, Word{"0", false},
    };
    for (const Word& word : kWords) {
        if (equalButForAsciiCase(trimmed(text), word.text)) return word.meaning;
    }
    return std::nullopt;
}

PropertyValue::Dictionary withWellFormedKeys(PropertyValue::Dictionary members) {
    const auto isSound = [](const auto& member) { return isWellFormedUtf8(member.first); };
    if (std::ranges::all_of(members, isSound)) return members;
    PropertyValue::Dictionary sound;
    for (auto& [key, value] : members) {
        sound.insert_or_assign(wellFormedUtf8(key), std::move(value));
    }
    return sound;
}

}  // namespace

PropertyValue::PropertyValue(const char* text) {
    if (text != nullptr) *this = PropertyValue(std::string(text));
}

PropertyValue::PropertyValue(std::string_view text) : PropertyValue(std::string(text)) {}

PropertyValue::PropertyValue(std::string text)
    : m_value(std::make_shared<const std::string>(wellFormedUtf8(std::move(text)))) {}

PropertyValue::PropertyValue(Data bytes)
    : m_value(std::make_shared<const Data>(std::move(bytes))) {}

PropertyValue::PropertyValue(Array items) {
    std::uint32_t deepest = 0;
    for (const PropertyValue& item : items)
        deepest = std::max(deepest, item.depth());
    if (deepest >= kMaximumDepth) return;
    m_value = std::make_shared<const ArrayNode>(ArrayNode{std::move(items), deepest + 1});
}

PropertyValue::PropertyValue(Dictionary members) {
    std::uint32_t deepest = 0;
    for (const auto& [key, value] : members)
        deepest = std::max(deepest, value.depth());
    if (deepest >= kMaximumDepth) return;
    m_value = std::make_shared<const DictionaryNode>(
        DictionaryNode{withWellFormedKeys(std::move(members)), deepest + 1});
}

std::uint32_t PropertyValue::depth() const noexcept {
    if (const auto* node = held<ArrayNode>()) return node->depth;
    if (const auto* node = held<DictionaryNode>()) return node->depth;
    return 0;
}

bool PropertyValue::asBool(bool fallback) const noexcept {
    if (const auto* truth = std::get_if<bool>(&m_value)) return *truth;
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) return *integer != 0;
    if (const auto* real = std::get_if<double>(&m_value)) {
        return std::isnan(*real) ? fallback : *real != 0.0;
    }
    if (const auto* text = held<std::string>()) return truthFrom(*text).value_or(fallback);
    return fallback;
}

std::int64_t PropertyValue::asInteger(std::int64_t fallback) const noexcept {
    if (const auto* truth = std::get_if<bool>(&m_value)) return *truth ? 1 : 0;
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) return *integer;
    if (const auto* real = std::get_if<double>(&m_value)) {
        const bool fits = *real >= -kTwoTo63 && *real < kTwoTo63;  // false for not-a-number
        return fits ? static_cast<std::int64_t>(*real) : fallback;
    }
    if (const auto* text = held<std::string>()) {
        return numberFrom<std::int64_t>(*text).value_or(fallback);
    }
    return fallback;
}

double PropertyValue::asReal(double fallback) const noexcept {
    if (const auto* truth = std::get_if<bool>(&m_value)) return *truth ? 1.0 : 0.0;
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* real = std::get_if<double>(&m_value)) return *real;
    if (const auto* text = held<std::string>()) {
        const std::optional<double> number = numberFrom<double>(*text);
        return number && std::isfinite(*number) ? *number : fallback;
    }
    return fallback;
}

std::string_view PropertyValue::asString(std::string_view fallback) const& noexcept {
    const auto* text = held<std::string>();
    return text != nullptr ? std::string_view(*text) : fallback;
}

std::span<const std::uint8_t> PropertyValue::asData() const& noexcept {
    const auto* bytes = held<Data>();
    return bytes != nullptr ? std::span<const std::uint8_t>(*bytes)
                            : std::span<const std::uint8_t>();
}

const PropertyValue::Array& PropertyValue::asArray() const& noexcept {
    static const Immortal<Array> kNone;
    const auto* node = held<ArrayNode>();
    return node != nullptr ? node->items : *kNone;
}

const PropertyValue::Dictionary& PropertyValue::asDictionary() const& noexcept {
    static const Immortal<Dictionary> kNone;
    const auto* node = held<DictionaryNode>();
    return node != nullptr ? node->members : *kNone;
}

const PropertyValue& PropertyValue::operator[](std::string_view key) const& noexcept {
    static const Immortal<PropertyValue> kNull;
    const Dictionary& members = asDictionary();
    const auto found = members.find(key);
    return found != members.end() ? found->second : *kNull;
}

PropertyValue PropertyValue::valueAtPath(std::span<const std::string_view> path) const noexcept {
    const PropertyValue* value = this;
    for (const std::string_view key : path)
        value = &(*value)[key];
    return *value;
}

PropertyValue PropertyValue::settingValueAtPath(std::span<const std::string_view> path,
                                                const PropertyValue& value) const {
    if (path.empty()) return value;
    if (path.size() + value.depth() > kMaximumDepth) return {};
    if (value.isNull() && valueAtPath(path).isNull()) return *this;
    Dictionary members = asDictionary();
    std::string key = wellFormedUtf8(std::string(path.front()));
    PropertyValue changed = (*this)[key].settingValueAtPath(path.subspan(1), value);
    if (changed.isNull()) {
        members.erase(key);
    } else {
        members.insert_or_assign(std::move(key), std::move(changed));
    }
    return members;
}

bool operator==(const PropertyValue& left, const PropertyValue& right) noexcept {
    if (left.kind() != right.kind()) return false;
    switch (left.kind()) {
        case PropertyValue::Kind::Null:
            return true;
        case PropertyValue::Kind::Bool:
        case PropertyValue::Kind::Integer:
            return left.asInteger() == right.asInteger();
        case PropertyValue::Kind::Real: {
            const double leftReal = left.asReal();
            const double rightReal = right.asReal();
            return leftReal == rightReal || (std::isnan(leftReal) && std::isnan(rightReal));
        }
        case PropertyValue::Kind::String:
            return left.asString() == right.asString();
        case PropertyValue::Kind::Data:
            return std::ranges::equal(left.asData(), right.asData());
        case PropertyValue::Kind::Array:
            return left.asArray() == right.asArray();
        case PropertyValue::Kind::Dictionary:
            return left.asDictionary() == right.asDictionary();
    }
    return false;
}

}  // namespace veltra
