// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/object_format.h"

#include "veltra/base/string_object_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <limits>
#include <optional>

namespace veltra {

namespace {

constexpr int kMostArguments = 64;
constexpr int kNoArgument = -1;

// What va_arg is asked for.
enum class Type {
    None,
    Int,
    Long,
    LongLong,
    IntMax,
    Size,
    Difference,
    WideCharacter,
    Double,
    LongDouble,
    Text,
    WideText,
    Pointer,
    Object,
    Count,  // the pointer of %n
};

union Value {
    int asInt;
    long asLong;
    long long asLongLong;
    std::intmax_t asIntMax;
    std::size_t asSize;
    std::ptrdiff_t asDifference;
    wint_t asWideCharacter;
    double asDouble;
    long double asLongDouble;
    const char* asText;
    const wchar_t* asWideText;
    const void* asPointer;
    const VLString* asObject;
};

// A width or precision: absent, a number, or an argument.
struct Measure {
    bool isPresent = false;
    int number = 0;
    int argument = kNoArgument;
};

struct Conversion {
    std::string_view text;      // the whole conversion, as it stands
    std::string_view flags;     // without "%"
    std::string_view modifier;  // "hh" to "L"
    char letter = '\0';
    Measure width;
    Measure precision;
    int argument = kNoArgument;
    Type type = Type::None;
};

bool isDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

// Reads one conversion; the format stands behind its "%".
class Parser {
public:
    Parser(std::string_view rest, int& nextArgument) noexcept
        : m_begin(rest), m_rest(rest), m_nextArgument(nextArgument) {}

    bool parse(Conversion& conversion) noexcept {
        m_taken = m_nextArgument;
        const std::optional<int> position = takePosition();
        const std::size_t flags = m_rest.find_first_not_of("-+ #0'");
        if (flags == std::string_view::npos) return false;
        conversion.flags = take(flags);
        if (!takeMeasure(conversion.width)) return false;
        if (m_rest.starts_with('.')) {
            take(1);
            if (!takeMeasure(conversion.precision)) return false;
            conversion.precision.isPresent = true;
        }
        conversion.modifier = take(modifierLength());
        if (m_rest.empty()) return false;
        conversion.letter = take(1)[0];
        if (!setType(conversion)) return false;
        if (conversion.type != Type::None) conversion.argument = position ? *position : m_taken++;
        if (conversion.argument >= kMostArguments) return false;
        conversion.text = {m_begin.data() - 1, m_begin.size() - m_rest.size() + 1};
        m_nextArgument = m_taken;
        return true;
    }

private:
    std::string_view take(std::size_t count) noexcept {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }

    // False when the number is too large for an int.
    bool takeNumber(int& number) noexcept {
        std::int64_t value = 0;
        while (!m_rest.empty() && isDigit(m_rest[0]) && value <= std::numeric_limits<int>::max())
            value = value * 10 + (take(1)[0] - '0');
        number = static_cast<int>(value);
        return value <= std::numeric_limits<int>::max();
    }

    // "2$", or nothing, and then nothing is taken.
    std::optional<int> takePosition() noexcept {
        const std::string_view before = m_rest;
        int number = 0;
        if (takeNumber(number) && number > 0 && m_rest.starts_with('$')) {
            take(1);
            return number - 1;
        }
        m_rest = before;
        return std::nullopt;
    }

    bool takeMeasure(Measure& measure) noexcept {
        if (m_rest.starts_with('*')) {
            take(1);
            const std::optional<int> position = takePosition();
            measure = {true, 0, position ? *position : m_taken++};
            return measure.argument < kMostArguments;
        }
        measure.isPresent = !m_rest.empty() && isDigit(m_rest[0]);
        return takeNumber(measure.number);
    }

    std::size_t modifierLength() const noexcept {
        if (m_rest.starts_with("hh") || m_rest.starts_with("ll")) return 2;
        return !m_rest.empty() &&
                       std::string_view("hljztLq").find(m_rest[0]) != std::string_view::npos
                   ? 1
                   : 0;
    }

    static bool setType(Conversion& conversion) noexcept {
        const std::string_view modifier = conversion.modifier;
        switch (conversion.letter) {
            case 'd':
            case 'i':
            case 'o':
            case 'u':
            case 'x':
            case 'X':
                conversion.type = modifier == "l"                       ? Type::Long
                                  : modifier == "ll" || modifier == "q" ? Type::LongLong
                                  : modifier == "L"                     ? Type::LongLong
                                  : modifier == "j"                     ? Type::IntMax
                                  : modifier == "z"                     ? Type::Size
                                  : modifier == "t"                     ? Type::Difference
                                                                        : Type::Int;
                return true;
            case 'a':
            case 'A':
            case 'e':
            case 'E':
            case 'f':
            case 'F':
            case 'g':
            case 'G':
                conversion.type = modifier == "L" ? Type::LongDouble : Type::Double;
                return modifier.empty() || modifier == "l" || modifier == "L";
            case 'c':
                conversion.type = modifier == "l" ? Type::WideCharacter : Type::Int;
                return modifier.empty() || modifier == "l";
            case 's':
                conversion.type = modifier == "l" ? Type::WideText : Type::Text;
                return modifier.empty() || modifier == "l";
            case 'C':
                conversion.type = Type::WideCharacter;
                return modifier.empty();
            case 'S':
                conversion.type = Type::WideText;
                return modifier.empty();
            case 'p':
                conversion.type = Type::Pointer;
                return modifier.empty();
            case '@':
                conversion.type = Type::Object;
                return modifier.empty();
            case 'n':
                conversion.type = Type::Count;
                return true;
            case 'm':
            case '%':
                return true;
            default:
                return false;
        }
    }

    std::string_view m_begin;
    std::string_view m_rest;
    int& m_nextArgument;
    int m_taken = 0;
};

// Calls `onText` for what stands between conversions and `onConversion` for each of them.
template <typename OnText, typename OnConversion>
void walk(std::string_view format, OnText onText, OnConversion onConversion) noexcept {
    int nextArgument = 0;
    while (!format.empty()) {
        const std::size_t percent = std::min(format.find('%'), format.size());
        if (percent > 0) onText(format.substr(0, percent));
        format.remove_prefix(percent);
        if (format.empty()) return;
        Conversion conversion;
        if (Parser(format.substr(1), nextArgument).parse(conversion)) {
            onConversion(conversion);
            format.remove_prefix(conversion.text.size());
        } else {
            onText(format.substr(0, 1));
            format.remove_prefix(1);
        }
    }
}

class Arguments {
public:
    // The first conversion that names an argument decides its type.
    void note(int argument, Type type) noexcept {
        if (argument == kNoArgument) return;
        m_count = std::max(m_count, argument + 1);
        Type& known = m_types[static_cast<std::size_t>(argument)];
        if (known == Type::None) known = type;
    }

    void collect(va_list arguments) noexcept {
        for (int index = 0; index < m_count; ++index) {
            Value& value = m_values[static_cast<std::size_t>(index)];
            switch (m_types[static_cast<std::size_t>(index)]) {
                case Type::None:  // named by nobody: as wide as an int, for want of better
                case Type::Int:
                    value.asInt = va_arg(arguments, int);
                    break;
                case Type::Long:
                    value.asLong = va_arg(arguments, long);
                    break;
                case Type::LongLong:
                    value.asLongLong = va_arg(arguments, long long);
                    break;
                case Type::IntMax:
                    value.asIntMax = va_arg(arguments, std::intmax_t);
                    break;
                case Type::Size:
                    value.asSize = va_arg(arguments, std::size_t);
                    break;
                case Type::Difference:
                    value.asDifference = va_arg(arguments, std::ptrdiff_t);
                    break;
                case Type::WideCharacter:
                    value.asWideCharacter = va_arg(arguments, wint_t);
                    break;
                case Type::Double:
                    value.asDouble = va_arg(arguments, double);
                    break;
                case Type::LongDouble:
                    value.asLongDouble = va_arg(arguments, long double);
                    break;
                case Type::Text:
                    value.asText = va_arg(arguments, const char*);
                    break;
                case Type::WideText:
                    value.asWideText = va_arg(arguments, const wchar_t*);
                    break;
                case Type::Pointer:
                case Type::Count:
                    value.asPointer = va_arg(arguments, const void*);
                    break;
                case Type::Object:
                    value.asObject = va_arg(arguments, const VLString*);
                    break;
            }
        }
    }

    bool has(int argument, Type type) const noexcept {
        return m_types[static_cast<std::size_t>(argument)] == type;
    }

    const Value& operator[](int argument) const noexcept {
        return m_values[static_cast<std::size_t>(argument)];
    }

private:
    std::array<Type, kMostArguments> m_types{};
    std::array<Value, kMostArguments> m_values;
    int m_count = 0;
};

bool appendFormatted(TextBuffer& text, const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    const bool isMade = text.appendFormat(format, arguments);
    va_end(arguments);
    return isMade;
}

class Formatter {
public:
    Formatter(TextBuffer& text, const Arguments& arguments) noexcept
        : m_text(text), m_arguments(arguments) {}

    bool append(const Conversion& conversion) const noexcept {
        LocalTextBuffer<48> format;
        if (!composeFormat(conversion, format)) return false;
        if (conversion.letter == '%') {
            m_text.append("%");
            return true;
        }
        const char* const one = format.view().data();
        if (conversion.type == Type::None) {
            errno = m_error;
            return appendFormatted(m_text, one);
        }
        if (!m_arguments.has(conversion.argument, conversion.type)) return false;
        const Value& value = m_arguments[conversion.argument];
        switch (conversion.type) {
            case Type::None:
            case Type::Count:
                return true;
            case Type::Int:
                return appendFormatted(m_text, one, value.asInt);
            case Type::Long:
                return appendFormatted(m_text, one, value.asLong);
            case Type::LongLong:
                return appendFormatted(m_text, one, value.asLongLong);
            case Type::IntMax:
                return appendFormatted(m_text, one, value.asIntMax);
            case Type::Size:
                return appendFormatted(m_text, one, value.asSize);
            case Type::Difference:
                return appendFormatted(m_text, one, value.asDifference);
            case Type::WideCharacter:
                return appendFormatted(m_text, one, value.asWideCharacter);
            case Type::Double:
                return appendFormatted(m_text, one, value.asDouble);
            case Type::LongDouble:
                return appendFormatted(m_text, one, value.asLongDouble);
            case Type::Text:
                return appendFormatted(m_text, one,
                                       value.asText != nullptr ? value.asText : "(null)");
            case Type::WideText:
                return appendFormatted(m_text, one,
                                       value.asWideText != nullptr ? value.asWideText : L"(null)");
            case Type::Pointer:
                return appendFormatted(m_text, one, value.asPointer);
            case Type::Object:
                if (value.asObject != nullptr)
                    m_text.appendString(value.asObject);
                else
                    m_text.append("(null)");
                return true;
        }
        return false;
    }

private:
    // The conversion on its own, with its numbers written out and no positions.
    bool composeFormat(const Conversion& conversion, TextBuffer& format) const noexcept {
        Measure width = conversion.width;
        Measure precision = conversion.precision;
        if (!resolve(width) || !resolve(precision)) return false;
        const std::int64_t columns = width.number;
        format.append("%");
        format.append(conversion.flags);
        if (columns < 0) format.append("-");
        if (width.isPresent) format.appendDecimal(columns < 0 ? -columns : columns);
        if (precision.isPresent && precision.number >= 0) {
            format.append(".");
            format.appendDecimal(precision.number);
        }
        format.append(conversion.modifier);
        format.append({&conversion.letter, 1});
        format.append({"\0", 1});
        return format.view().ends_with('\0');  // else memory was out
    }

    bool resolve(Measure& measure) const noexcept {
        if (measure.argument == kNoArgument) return true;
        if (!m_arguments.has(measure.argument, Type::Int)) return false;
        measure.number = m_arguments[measure.argument].asInt;
        return true;
    }

    TextBuffer& m_text;
    const Arguments& m_arguments;
    int m_error = errno;  // for "%m", before a C library call changes it
};

}  // namespace

void appendObjectFormat(TextBuffer& text, std::string_view format, va_list arguments) noexcept {
    Arguments collected;
    walk(
        format, [](std::string_view) {},
        [&collected](const Conversion& conversion) {
            collected.note(conversion.width.argument, Type::Int);
            collected.note(conversion.precision.argument, Type::Int);
            collected.note(conversion.argument, conversion.type);
        });
    collected.collect(arguments);
    const Formatter formatter(text, collected);
    walk(
        format, [&text](std::string_view between) { text.append(between); },
        [&text, &formatter](const Conversion& conversion) {
            if (!formatter.append(conversion)) text.append(conversion.text);
        });
}

}  // namespace veltra
