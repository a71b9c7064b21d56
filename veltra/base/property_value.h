// SPDX-License-Identifier: MIT
// One value of a preferences file, a keyed archive or an exception's user info: null, a truth
// value, a number, text, bytes, or an array or dictionary of such values.
//
// A value never changes; assignment replaces it by another. Copies share their content, so that
// copying is cheap and never fails. To edit a container, copy it out, edit the copy and make a
// value of it, or use settingValueAtPath().
//
// Three things hold for every value, so that no reader needs to check them:
//   - strings and keys are well-formed UTF-8: ill-formed parts become U+FFFD (keep file names of
//     unknown encoding as data);
//   - containers nest at most kMaximumDepth deep;
//   - integers fit 64 bits with sign (larger unsigned ones become reals).
//
// Thread: any; one value may be read by several threads, as with any plain value.
// Realtime-safe: reading, yes; making, copying and destroying, no.
#pragma once

#include "veltra/export.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace veltra {

// Integers, without bool and the character types.
template <class T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
                      !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                      !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

class VELTRA_EXPORT PropertyValue {
    struct ArrayNode;
    struct DictionaryNode;

public:
    // What a value is. Integers and reals are two kinds, though they convert to one another.
    enum class Kind : std::uint8_t { Null, Bool, Integer, Real, String, Data, Array, Dictionary };

    // The containers that values are made of and read as: bytes, values in order, and values by
    // key.
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<PropertyValue>;
    using Dictionary = std::map<std::string, PropertyValue, std::less<>>;  // keys in byte order

private:
    // In the order of Kind.
    using Storage =
        std::variant<std::monostate, bool, std::int64_t, double, std::shared_ptr<const std::string>,
                     std::shared_ptr<const Data>, std::shared_ptr<const ArrayNode>,
                     std::shared_ptr<const DictionaryNode>>;

public:
    // A number or string has depth 0, a container one more than its deepest member. A container
    // that would exceed the maximum becomes null, so that walking a value by recursion is always
    // safe.
    static constexpr std::uint32_t kMaximumDepth = 128;

    constexpr PropertyValue() noexcept = default;

    // A truth value; a pointer or a number does not become one by accident.
    template <std::same_as<bool> T>
    PropertyValue(T value) noexcept : m_value(value) {}

    // Unsigned numbers above INT64_MAX become reals.
    template <WholeNumber T>
    PropertyValue(T value) noexcept
        : m_value(std::in_range<std::int64_t>(value) ? Storage(static_cast<std::int64_t>(value))
                                                     : Storage(static_cast<double>(value))) {}

    // A real number. A `long double` is rounded to a double.
    template <std::floating_point T>
    PropertyValue(T value) noexcept : m_value(static_cast<double>(value)) {}

    // These throw std::bad_alloc when memory is out, and nothing else. A null `text` makes a null
    // value.
    PropertyValue(const char* text);
    PropertyValue(std::string_view text);
    PropertyValue(std::string text);
    PropertyValue(Data bytes);
    PropertyValue(Array items);
    // When keys become equal because their ill-formed parts are replaced, the last in byte order
    // wins.
    PropertyValue(Dictionary members);

    // Shares the content with the other.
    PropertyValue(const PropertyValue&) noexcept = default;
    PropertyValue& operator=(const PropertyValue&) noexcept = default;
    // What was moved from is null.
    PropertyValue(PropertyValue&& other) noexcept : m_value(std::exchange(other.m_value, {})) {}
    PropertyValue& operator=(PropertyValue&& other) noexcept {
        m_value = std::exchange(other.m_value, {});
        return *this;
    }
    ~PropertyValue() = default;

    // What this value is; Null for one that was made without an argument or moved from.
    Kind kind() const noexcept { return static_cast<Kind>(m_value.index()); }

    // Whether there is nothing here; what is looked up in vain is null, too.
    bool isNull() const noexcept { return kind() == Kind::Null; }

    // How deep containers nest in it: 0 for null, numbers, text and data, 1 for an empty container,
    // at most kMaximumDepth.
    std::uint32_t depth() const noexcept;

    // Conversions for readers of preferences, where it does not matter how a number was written:
    // numbers and truth values convert to one another, and so does a string that is nothing but a
    // number (blanks around it are allowed, grouped digits are not; the locale plays no part).
    // These return `fallback` for what cannot be converted.

    // Numbers other than 0 are true; strings "true", "yes", "1" / "false", "no", "0" in any case.
    // Not convertible: NaN, other strings, containers, data, null.
    bool asBool(bool fallback = false) const noexcept;

    // True is 1. Reals lose their fraction. Strings must be decimal integers.
    // Not convertible: reals beyond 64 bits, and the rest as above.
    std::int64_t asInteger(std::int64_t fallback = 0) const noexcept;

    // Large integers are rounded to the nearest real. Strings must be finite decimal numbers.
    double asReal(double fallback = 0.0) const noexcept;

    // These convert nothing: for another kind they return `fallback` or an empty container. What
    // they return lives as long as this value or a copy of it; a temporary must be given a name.
    std::string_view asString(std::string_view fallback = {}) const& noexcept;
    std::span<const std::uint8_t> asData() const& noexcept;
    const Array& asArray() const& noexcept;
    const Dictionary& asDictionary() const& noexcept;
    std::string_view asString(std::string_view fallback = {}) const&& = delete;
    std::span<const std::uint8_t> asData() const&& = delete;
    const Array& asArray() const&& = delete;
    const Dictionary& asDictionary() const&& = delete;

    // The member of a dictionary; null when there is none or this is not a dictionary.
    const PropertyValue& operator[](std::string_view key) const& noexcept;
    PropertyValue operator[](std::string_view key) const&& noexcept { return (*this)[key]; }

    // The member of the member, and so on: {"LeakGuard", "group", "key"}. An empty path is the
    // value itself; null when a step leads nowhere.
    PropertyValue valueAtPath(std::span<const std::string_view> path) const noexcept;
    PropertyValue valueAtPath(std::initializer_list<std::string_view> path) const noexcept {
        return valueAtPath(std::span(path.begin(), path.size()));
    }

    // A copy in which `value` stands at `path`. Missing dictionaries on the way are made, and what
    // is no dictionary there is replaced by one; a null `value` removes the last key instead.
    // Null when `value` would stand too deep: all or part of it below kMaximumDepth. Throws
    // std::bad_alloc.
    PropertyValue settingValueAtPath(std::span<const std::string_view> path,
                                     const PropertyValue& value) const;
    PropertyValue settingValueAtPath(std::initializer_list<std::string_view> path,
                                     const PropertyValue& value) const {
        return settingValueAtPath(std::span(path.begin(), path.size()), value);
    }

    // Equal kind and content: integer 1 is not real 1.0. NaN equals NaN, so that an unchanged value
    // compares equal.
    VELTRA_EXPORT friend bool operator==(const PropertyValue& left,
                                         const PropertyValue& right) noexcept;

private:
    template <class T>
    const T* held() const noexcept {
        const auto* pointer = std::get_if<std::shared_ptr<const T>>(&m_value);
        return pointer != nullptr ? pointer->get() : nullptr;
    }

    Storage m_value;
};

}  // namespace veltra
