// SPDX-License-Identifier: MIT
#include "veltra/base/json_text.h"

#include "veltra/base/base64.h"
#include "veltra/base/number_text.h"

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace veltra {

namespace {

using Kind = PropertyValue::Kind;

constexpr std::string_view kDataKey = "$data";
constexpr std::string_view kRealKey = "$real";

// Values are built while the text is read, not from the library's own tree: its destructor
// allocates, which would end the process when memory is out.
class Builder {
public:
    explicit Builder(JsonNumbers numbers) noexcept
        : m_keepsDigits(numbers == JsonNumbers::AsDigits) {}

    bool null() { return add({}); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(std::int64_t value) { return addInteger(value); }
    bool number_unsigned(std::uint64_t value) { return addInteger(value); }
    bool number_float(double value, const std::string& digits) {
        return add(m_keepsDigits ? PropertyValue(digits) : PropertyValue(value));
    }
    bool string(std::string& value) { return add(PropertyValue(std::move(value))); }
    bool binary(std::vector<std::uint8_t>&) { return false; }
    bool start_object(std::size_t) { return open(false); }
    bool start_array(std::size_t) { return open(true); }

    bool key(std::string& name) {
        Level& level = m_levels.back();
        level.isTagged = name == kDataKey || name == kRealKey;
        if (name.starts_with("$$")) name.erase(0, 1);
        level.key = std::move(name);
        return true;
    }

    bool end_object() {
        Level level = std::move(m_levels.back());
        m_levels.pop_back();
        if (m_levels.empty()) {
            result = std::move(level.members);
            return true;
        }
        PropertyValue value = level.isTagged ? untagged(level.members) : PropertyValue();
        if (value.isNull()) value = PropertyValue(std::move(level.members));
        return !value.isNull() && add(std::move(value));
    }

    bool end_array() {
        PropertyValue value(std::move(m_levels.back().items));
        m_levels.pop_back();
        return !value.isNull() && add(std::move(value));
    }

    template <class Error>
    bool parse_error(std::size_t, const std::string&, const Error&) {
        return false;
    }

    PropertyValue::Dictionary result;

private:
    struct Level {
        bool isArray = false;
        bool isTagged = false;  // the key read last was one of ours
        std::string key;
        PropertyValue::Array items;
        PropertyValue::Dictionary members;
    };

    // The outermost object, the deepest value, and a tagged object in it.
    static constexpr std::size_t kMaximumLevels = PropertyValue::kMaximumDepth + 2;

    bool open(bool isArray) {
        if (m_levels.size() >= kMaximumLevels || (isArray && m_levels.empty())) return false;
        m_levels.emplace_back().isArray = isArray;
        return true;
    }

    bool addInteger(std::integral auto value) {
        return add(m_keepsDigits ? PropertyValue(NumberText(value).view()) : PropertyValue(value));
    }

    bool add(PropertyValue value) {
        if (m_levels.empty()) return false;
        Level& level = m_levels.back();
        if (level.isArray) {
            level.items.push_back(std::move(value));
        } else {
            level.members.insert_or_assign(std::move(level.key), std::move(value));
        }
        return true;
    }

    // Null when the members do not say data or a real after all.
    static PropertyValue untagged(const PropertyValue::Dictionary& members) {
        if (members.size() != 1) return {};
        const auto& [key, value] = *members.begin();
        const std::string_view text = value.asString();
        if (key == kRealKey) {
            constexpr double kInfinity = std::numeric_limits<double>::infinity();
            if (text == "nan") return std::numeric_limits<double>::quiet_NaN();
            if (text == "inf") return kInfinity;
            if (text == "-inf") return -kInfinity;
            return {};
        }
        if (value.kind() != Kind::String) return {};
        auto bytes = bytesFromBase64(text);
        return bytes ? PropertyValue(std::move(*bytes)) : PropertyValue();
    }

    const bool m_keepsDigits;
    std::vector<Level> m_levels;
};

// Written from the values themselves for the same reason: the library writes its own tree alone.
class Writer {
public:
    void write(const PropertyValue& value) {
        switch (value.kind()) {
            case Kind::Null:
                m_text += "null";
                break;
            case Kind::Bool:
                m_text += value.asBool() ? "true" : "false";
                break;
            case Kind::Integer:
                m_text += NumberText(value.asInteger()).view();
                break;
            case Kind::Real:
                writeReal(value.asReal());
                break;
            case Kind::String:
                writeString(value.asString());
                break;
            case Kind::Data:
                writeTagged(kDataKey, base64FromBytes(value.asData()));
                break;
            case Kind::Array:
                writeArray(value.asArray());
                break;
            case Kind::Dictionary:
                write(value.asDictionary());
                break;
        }
    }

    void write(const PropertyValue::Dictionary& members) {
        writeList('{', '}', members, [this](const auto& member) {
            writeString(member.first.starts_with('$') ? '$' + member.first : member.first);
            m_text += ": ";
            write(member.second);
        });
    }

    std::string take() { return std::move(m_text += '\n'); }

private:
    void writeArray(const PropertyValue::Array& items) {
        writeList('[', ']', items, [this](const PropertyValue& item) { write(item); });
    }

    template <class List, class WriteOne>
    void writeList(char opening, char closing, const List& list, WriteOne writeOne) {
        m_text += opening;
        m_indent += 4;
        bool isFirst = true;
        for (const auto& one : list) {
            if (!std::exchange(isFirst, false)) m_text += ',';
            startLine();
            writeOne(one);
        }
        m_indent -= 4;
        if (!list.empty()) startLine();
        m_text += closing;
    }

    void startLine() { (m_text += '\n').append(m_indent, ' '); }

    void writeTagged(std::string_view key, std::string_view text) {
        m_text += '{';
        writeString(key);
        m_text += ": ";
        writeString(text);
        m_text += '}';
    }

    void writeReal(double value) {
        if (std::isnan(value)) return writeTagged(kRealKey, "nan");
        if (std::isinf(value)) return writeTagged(kRealKey, value > 0 ? "inf" : "-inf");
        const NumberText number = NumberText::shortest(value);
        const std::string_view digits = number.view();
        m_text += digits;
        if (digits.find_first_of(".e") == std::string_view::npos) m_text += ".0";
    }

    void writeString(std::string_view text) {
        static constexpr std::string_view kHexDigits = "0123456789abcdef";
        m_text += '"';
        for (const char character : text) {
            const auto code = static_cast<unsigned char>(character);
            if (code < 0x20) {
                m_text += "\\u00";
                m_text += kHexDigits[code >> 4U];
                m_text += kHexDigits[code & 15U];
            } else {
                if (character == '"' || character == '\\') m_text += '\\';
                m_text += character;
            }
        }
        m_text += '"';
    }

    std::string m_text;
    std::size_t m_indent = 0;
};

}  // namespace

std::string jsonFromDictionary(const PropertyValue::Dictionary& dictionary) {
    Writer writer;
    writer.write(dictionary);
    return writer.take();
}

std::optional<PropertyValue::Dictionary> dictionaryFromJson(std::string_view text,
                                                            JsonNumbers numbers) {
    Builder builder(numbers);
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) return std::nullopt;
    return std::move(builder.result);
}

}  // namespace veltra
