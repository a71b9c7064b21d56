// SPDX-License-Identifier: MIT
#include "veltra/ui/keyed_coder.h"

#include <cmath>

namespace veltra {

namespace {
constexpr char kName[] = "NAME";
constexpr char kSize[] = "SIZE";
constexpr char kWeight[] = "WEIGHT";
constexpr char kEqualDigits[] = "EQUAL_DIGITS";
constexpr float kLargestFont = 10000.0F;  // points
}  // namespace

void KeyedCoder::encodeColor(std::optional<Color> color, std::string_view key) {
    if (!color) return put(key, {});
    put(key, PropertyValue::Array{color->red, color->green, color->blue, color->alpha});
}

void KeyedCoder::encodeRect(const Rect& rect, std::string_view key) {
    put(key, PropertyValue::Array{rect.minX(), rect.minY(), rect.size.width, rect.size.height});
}

void KeyedCoder::encodeFont(const Font& font, std::string_view key) {
    put(key, PropertyValue::Dictionary{{kName, font.name},
                                       {kSize, font.size},
                                       {kWeight, static_cast<int>(font.weight)},
                                       {kEqualDigits, font.hasEqualDigits}});
}

Font KeyedCoder::decodeFont(std::string_view key, const Font& fallback) const {
    const KeyedCoder inner(decodeValue(key));
    Font font;
    font.name = inner.decodeString(kName, fallback.name);
    font.size = static_cast<float>(inner.decodeDouble(kSize, fallback.size));
    if (!(font.size > 0.0F && font.size <= kLargestFont)) font.size = fallback.size;
    font.weight = inner.decodeEnum(kWeight, fallback.weight, FontWeight::Bold);
    font.hasEqualDigits = inner.decodeBool(kEqualDigits, fallback.hasEqualDigits);
    return font;
}

PropertyValue KeyedCoder::decodeValue(std::string_view key) const {
    const PropertyValue* const value = find(key);
    return value != nullptr ? *value : PropertyValue();
}

const PropertyValue* KeyedCoder::find(std::string_view key) const {
    const auto found = m_values.find(key);
    return found != m_values.end() ? &found->second : nullptr;
}

std::optional<KeyedCoder::Four> KeyedCoder::findFour(std::string_view key) const {
    const PropertyValue* const value = find(key);
    if (value == nullptr || value->asArray().size() != 4) return std::nullopt;
    Four four{};
    for (std::size_t i = 0; i < 4; ++i) {
        four.numbers[i] = static_cast<float>(value->asArray()[i].asReal(NAN));
        if (std::isnan(four.numbers[i])) return std::nullopt;
    }
    return four;
}

std::int64_t KeyedCoder::decodeInt64(std::string_view key, std::int64_t fallback) const {
    const PropertyValue* const value = find(key);
    return value != nullptr ? value->asInteger(fallback) : fallback;
}

bool KeyedCoder::decodeBool(std::string_view key, bool fallback) const {
    const PropertyValue* const value = find(key);
    return value != nullptr ? value->asBool(fallback) : fallback;
}

double KeyedCoder::decodeDouble(std::string_view key, double fallback) const {
    const PropertyValue* const value = find(key);
    return value != nullptr ? value->asReal(fallback) : fallback;
}

std::string KeyedCoder::decodeString(std::string_view key, std::string_view fallback) const {
    const PropertyValue* const value = find(key);
    return std::string(value != nullptr ? value->asString(fallback) : fallback);
}

std::optional<Color> KeyedCoder::decodeColor(std::string_view key,
                                             std::optional<Color> fallback) const {
    const PropertyValue* const value = find(key);
    if (value != nullptr && value->isNull()) return std::nullopt;
    const auto four = findFour(key);
    if (!four) return fallback;
    const float* n = four->numbers;
    return Color{n[0], n[1], n[2], n[3]};
}

Rect KeyedCoder::decodeRect(std::string_view key, const Rect& fallback) const {
    const auto four = findFour(key);
    if (!four) return fallback;
    const float* n = four->numbers;
    return {{n[0], n[1]}, {n[2], n[3]}};
}

}  // namespace veltra
