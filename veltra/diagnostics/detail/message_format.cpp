// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/message_format.h"

#include "veltra/base/string_object_text.h"
#include "veltra/platform/c_locale.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <limits>
#include <optional>

namespace veltra::detail {

namespace {

constexpr int kMostArguments = 128;
constexpr int kNoArgument = -1;

// What va_arg is asked for. Pointers are told apart, so that one is not read as another.
enum class Type : std::uint8_t {
    None,
    Int,
    Long,
    LongLong,
    Double,
    LongDouble,
    Text,
    WideText,
    Object,
    Address,
};

// What is made of it.
enum class Form : std::uint8_t {
    Integer,
    Real,
    LongReal,
    Character,
    WideCharacter,
    Text,
    WideText,
    Object,
    Address,
    Nothing,
    Error,
    Percent,
};

template <typename Integer>
constexpr Type kTypeOf = sizeof(Integer) <= sizeof(int)    ? Type::Int
                         : sizeof(Integer) == sizeof(long) ? Type::Long
                                                           : Type::LongLong;

struct Kind {
    std::string_view letters;
    std::string_view modifier;
    Type type;
    Form form;
    std::uint8_t bytes = 0;  // of an integer, how many count
};

constexpr std::string_view kIntegers = "diouxX";
constexpr std::string_view kReals = "aAeEfFgG";

template <typename Integer>
consteval Kind integers(std::string_view modifier) noexcept {
    return {kIntegers, modifier, kTypeOf<Integer>, Form::Integer, sizeof(Integer)};
}

constexpr std::array kKinds{
    integers<int>(""),
    integers<signed char>("hh"),
    integers<short>("h"),
    integers<long>("l"),
    integers<long long>("ll"),
    integers<long long>("q"),
    integers<long long>("L"),
    integers<std::intmax_t>("j"),
    integers<std::size_t>("z"),
    integers<std::ptrdiff_t>("t"),
    Kind{"DUO", "", Type::Int, Form::Integer, sizeof(int)},
    Kind{kReals, "", Type::Double, Form::Real},
    Kind{kReals, "l", Type::Double, Form::Real},
    Kind{kReals, "L", Type::LongDouble, Form::LongReal},
    Kind{"c", "", Type::Int, Form::Character},
    Kind{"c", "h", Type::Int, Form::Character},
    Kind{"c", "hh", Type::Int, Form::Character},
    Kind{"cC", "l", kTypeOf<wint_t>, Form::WideCharacter},
    Kind{"C", "", kTypeOf<wint_t>, Form::WideCharacter},
    Kind{"s", "", Type::Text, Form::Text},
    Kind{"s", "h", Type::Text, Form::Text},
    Kind{"s", "hh", Type::Text, Form::Text},
    Kind{"sS", "l", Type::WideText, Form::WideText},
    Kind{"S", "", Type::WideText, Form::WideText},
    Kind{"@", "", Type::Object, Form::Object},
    Kind{"p", "", Type::Address, Form::Address},
    Kind{"n", "", Type::Address, Form::Nothing},
    Kind{"n", "hh", Type::Address, Form::Nothing},
    Kind{"n", "h", Type::Address, Form::Nothing},
    Kind{"n", "l", Type::Address, Form::Nothing},
    Kind{"n", "ll", Type::Address, Form::Nothing},
    Kind{"n", "j", Type::Address, Form::Nothing},
    Kind{"n", "z", Type::Address, Form::Nothing},
    Kind{"n", "t", Type::Address, Form::Nothing},
    Kind{"m", "", Type::None, Form::Error},
    Kind{"%", "", Type::None, Form::Percent},
};

enum Modifier : std::uint8_t { kNone, kHh, kH, kL, kLl, kQ, kBigL, kJ, kZ, kT };
constexpr std::array<std::string_view, kT + 1> kModifiers{"",  "hh", "h", "l", "ll",
                                                          "q", "L",  "j", "z", "t"};

// For each modifier and letter one more than the place of its kind in kKinds, 0 where there is
// none.
constexpr auto kKindPlaces = [] {
    std::array<std::array<std::uint8_t, 128>, kModifiers.size()> places{};
    for (std::size_t kind = 0; kind < kKinds.size(); ++kind)
        for (std::size_t modifier = 0; modifier < kModifiers.size(); ++modifier)
            if (kKinds[kind].modifier == kModifiers[modifier])
                for (const char letter : kKinds[kind].letters)
                    places[modifier][static_cast<unsigned char>(letter)] =
                        static_cast<std::uint8_t>(kind + 1);
    return places;
}();

// A width or precision: absent, a number, or an argument.
struct Measure {
    bool isPresent = false;
    int number = 0;
    int argument = kNoArgument;
};

struct Conversion {
    std::string_view text;   // the whole conversion, as it stands
    std::string_view flags;  // without "%"
    char letter = '\0';
    Measure width;
    Measure precision;
    int argument = kNoArgument;
    const Kind* kind = nullptr;

    bool isBare() const noexcept {
        return flags.empty() && !width.isPresent && !precision.isPresent;
    }
};

bool isFlag(char character) noexcept {
    switch (character) {
        case '-':
        case '+':
        case ' ':
        case '#':
        case '0':
        case '\'':
            return true;
        default:
            return false;
    }
}

bool isDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

// Reads one conversion; the format stands behind its "%".
class Parser {
public:
    Parser(std::string_view rest, int& nextArgument, Objects objects) noexcept
        : m_begin(rest), m_rest(rest), m_nextArgument(nextArgument), m_objects(objects) {}

    bool parse(Conversion& conversion) noexcept {
        m_taken = m_nextArgument;
        std::optional<int> position;
        Modifier modifier = kNone;
        const bool isLetterAlone = !m_rest.empty() && kindOf(m_rest[0], kNone) != nullptr;
        if (!isLetterAlone) {
            position = takePosition();
            conversion.flags = takeFlags();
            if (!takeMeasure(conversion.width)) return false;
            if (m_rest.starts_with('.')) {
                take(1);
                if (!takeMeasure(conversion.precision)) return false;
                conversion.precision.isPresent = true;
            }
            modifier = takeModifier();
            if (m_rest.empty()) return false;
        }
        conversion.letter = take(1)[0];
        conversion.kind = kindOf(conversion.letter, modifier);
        if (conversion.kind == nullptr) return false;
        if (conversion.kind->type != Type::None)
            conversion.argument = position ? *position : m_taken++;
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

    std::string_view takeFlags() noexcept {
        std::size_t count = 0;
        while (count < m_rest.size() && isFlag(m_rest[count]))
            ++count;
        return take(count);
    }

    Modifier takeModifier() noexcept {
        if (m_rest.empty()) return kNone;
        const bool isDouble = m_rest.size() > 1 && m_rest[1] == m_rest[0];
        Modifier modifier = kNone;
        switch (m_rest[0]) {
            case 'h':
                modifier = isDouble ? kHh : kH;
                break;
            case 'l':
                modifier = isDouble ? kLl : kL;
                break;
            case 'q':
                modifier = kQ;
                break;
            case 'L':
                modifier = kBigL;
                break;
            case 'j':
                modifier = kJ;
                break;
            case 'z':
                modifier = kZ;
                break;
            case 't':
                modifier = kT;
                break;
            default:
                break;
        }
        take(kModifiers[modifier].size());
        return modifier;
    }

    const Kind* kindOf(char letter, Modifier modifier) const noexcept {
        const auto index = static_cast<unsigned char>(letter);
        if (index >= kKindPlaces[modifier].size() || kKindPlaces[modifier][index] == 0)
            return nullptr;
        const Kind& kind = kKinds[kKindPlaces[modifier][index] - 1U];
        return kind.form == Form::Object && m_objects == Objects::No ? nullptr : &kind;
    }

    std::string_view m_begin;
    std::string_view m_rest;
    int& m_nextArgument;
    int m_taken = 0;
    Objects m_objects;
};

// Calls `onText` for what stands between conversions and `onConversion` for each of them, until one
// is not understood or `onConversion` answers false. Answers what is left then.
template <typename OnText, typename OnConversion>
std::string_view walk(std::string_view format, Objects objects, OnText onText,
                      OnConversion onConversion) noexcept {
    int nextArgument = 0;
    while (!format.empty()) {
        const std::size_t percent = std::min(format.find('%'), format.size());
        if (percent > 0) onText(format.substr(0, percent));
        format.remove_prefix(percent);
        if (format.empty()) break;
        Conversion conversion;
        if (!Parser(format.substr(1), nextArgument, objects).parse(conversion)) break;
        if (!onConversion(conversion)) break;
        format.remove_prefix(conversion.text.size());
    }
    return format;
}

union Value {
    std::intmax_t integer;
    double real;
    long double longReal;
    const void* address;
};

class Arguments {
public:
    explicit Arguments(va_list arguments) noexcept { va_copy(m_rest, arguments); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() { va_end(m_rest); }

    void note(const Conversion& conversion) noexcept {
        note(conversion.width.argument, Type::Int);
        note(conversion.precision.argument, Type::Int);
        note(conversion.argument, conversion.kind->type);
    }

    // Up to the first that nobody has noted: what stands behind it cannot be found.
    // NOLINTBEGIN(clang-analyzer-valist.Uninitialized): the constructor has copied the list
    void collect() noexcept {
        for (; m_count < kMostArguments; ++m_count) {
            Value& value = m_values[static_cast<std::size_t>(m_count)];
            switch (m_types[static_cast<std::size_t>(m_count)]) {
                case Type::None:
                    return;
                case Type::Int:
                    value.integer = va_arg(m_rest, int);
                    break;
                case Type::Long:
                    value.integer = va_arg(m_rest, long);
                    break;
                case Type::LongLong:
                    value.integer = va_arg(m_rest, long long);
                    break;
                case Type::Double:
                    value.real = va_arg(m_rest, double);
                    break;
                case Type::LongDouble:
                    value.longReal = va_arg(m_rest, long double);
                    break;
                case Type::Text:
                case Type::WideText:
                case Type::Object:
                case Type::Address:
                    value.address = va_arg(m_rest, const void*);
                    break;
            }
        }
    }
    // NOLINTEND(clang-analyzer-valist.Uninitialized)

    // Whether all that it needs are collected.
    bool reach(const Conversion& conversion) const noexcept {
        return conversion.argument < m_count && conversion.width.argument < m_count &&
               conversion.precision.argument < m_count;
    }

    bool has(int argument, Type type) const noexcept {
        return m_types[static_cast<std::size_t>(argument)] == type;
    }

    const Value& operator[](int argument) const noexcept {
        return m_values[static_cast<std::size_t>(argument)];
    }

private:
    // The first conversion that names an argument decides its type.
    void note(int argument, Type type) noexcept {
        if (argument == kNoArgument) return;
        Type& known = m_types[static_cast<std::size_t>(argument)];
        if (known == Type::None) known = type;
    }

    va_list m_rest;
    std::array<Type, kMostArguments> m_types{};
    std::array<Value, kMostArguments> m_values;
    int m_count = 0;
};

bool appendPrinted(TextBuffer& text, const char* format, ...) noexcept {
    const CLocale plain;
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

    // False when the conversion cannot be made.
    bool append(const Conversion& conversion) noexcept {
        const std::optional<int> width = resolve(conversion.width, 0);
        const std::optional<int> precision = resolve(conversion.precision, kNoPrecision);
        if (!width || !precision) return false;
        m_width = *width;
        m_precision = *precision;
        const Kind& kind = *conversion.kind;
        if (kind.type == Type::None) return appendWithoutArgument(conversion);
        if (!m_arguments.has(conversion.argument, kind.type)) return false;
        const Value& value = m_arguments[conversion.argument];
        switch (kind.form) {
            case Form::Integer:
                return appendInteger(conversion, value.integer);
            case Form::Real:
                return print(conversion, "", value.real);
            case Form::LongReal:
                return print(conversion, "L", value.longReal);
            case Form::Character:
                return printWithoutPrecision(conversion, static_cast<int>(value.integer));
            case Form::Address:
                return printWithoutPrecision(conversion, value.address);
            case Form::Text:
                return appendText(conversion, static_cast<const char*>(value.address));
            case Form::WideText:
                return appendWide(conversion, static_cast<const wchar_t*>(value.address));
            case Form::WideCharacter: {
                const std::array<wchar_t, 2> one{static_cast<wchar_t>(value.integer), L'\0'};
                return one[0] == L'\0' ? (m_text.append({"\0", 1}), true)
                                       : appendWide(conversion, one.data());
            }
            case Form::Object:
                appendObject(static_cast<const VLString*>(value.address));
                return true;
            case Form::Nothing:
            case Form::Error:
            case Form::Percent:
                return true;
        }
        return false;
    }

private:
    static constexpr int kMost = static_cast<int>(kLongestText);
    static constexpr int kNoPrecision = -1;

    // What goes beyond the longest text is cut off in the end, and not worth making: padding alone
    // can take minutes.
    std::optional<int> resolve(const Measure& measure, int absent) const noexcept {
        if (!measure.isPresent) return absent;
        int number = measure.number;
        if (measure.argument != kNoArgument) {
            if (!m_arguments.has(measure.argument, Type::Int)) return std::nullopt;
            number = static_cast<int>(m_arguments[measure.argument].integer);
        }
        return std::clamp(number, -kMost, kMost);
    }

    bool appendWithoutArgument(const Conversion& conversion) noexcept {
        if (conversion.kind->form == Form::Percent) {
            m_text.append("%");
            return true;
        }
        const auto format = composed(conversion, "", 'm', ".*");
        errno = m_error;
        return appendPrinted(m_text, format.data(), m_width, m_precision);
    }

    bool appendInteger(const Conversion& conversion, std::intmax_t value) noexcept {
        constexpr std::string_view kBesides = "DdUuOo";
        char letter = conversion.letter;
        if (const std::size_t at = kBesides.find(letter);
            at != std::string_view::npos && at % 2 == 0)
            letter = kBesides[at + 1];
        const bool isSigned = letter == 'd' || letter == 'i';
        const int unused = 64 - 8 * conversion.kind->bytes;
        const auto bits = static_cast<std::uint64_t>(value) << unused;
        const std::int64_t number = isSigned ? static_cast<std::int64_t>(bits) >> unused
                                             : static_cast<std::int64_t>(bits >> unused);
        if (conversion.isBare() && (isSigned || letter == 'u')) {
            std::array<char, 24> digits;
            const auto end = isSigned ? std::to_chars(digits.begin(), digits.end(), number)
                                      : std::to_chars(digits.begin(), digits.end(), bits >> unused);
            m_text.append({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
            return true;
        }
        return appendPrinted(m_text, composed(conversion, "j", letter, ".*").data(), m_width,
                             m_precision, static_cast<std::intmax_t>(number));
    }

    bool appendText(const Conversion& conversion, const char* text) noexcept {
        if (text == nullptr) text = "(null)";
        if (!conversion.isBare()) return print(conversion, "", text, 's');
        m_text.append(text);
        return true;
    }

    // The precision counts bytes and splits no character; text that fills it needs no end.
    bool appendWide(const Conversion& conversion, const wchar_t* wide) noexcept {
        if (wide == nullptr) wide = L"(null)";
        LocalTextBuffer<256> utf8;
        const std::size_t most =
            m_precision >= 0 ? static_cast<std::size_t>(m_precision) : SIZE_MAX;
        for (std::size_t before = 0; before < most && *wide != L'\0' && !utf8.isCut(); ++wide) {
            utf8.appendCharacter(static_cast<char32_t>(*wide));
            if (utf8.view().size() > most) {
                utf8.shorten(before);
                break;
            }
            before = utf8.view().size();
        }
        if (m_width == 0) {
            m_text.append(utf8.view());
            return true;
        }
        m_precision = static_cast<int>(utf8.view().size());
        return print(conversion, "", utf8.view().data(), 's');
    }

    void appendObject(const VLString* object) noexcept {
        if (object != nullptr)
            m_text.appendString(object);
        else
            m_text.append("(null)");
    }

    template <typename Argument>
    bool print(const Conversion& conversion, std::string_view modifier, Argument argument,
               char letter = '\0') noexcept {
        const auto format =
            composed(conversion, modifier, letter != '\0' ? letter : conversion.letter, ".*");
        return appendPrinted(m_text, format.data(), m_width, m_precision, argument);
    }

    template <typename Argument>
    bool printWithoutPrecision(const Conversion& conversion, Argument argument) noexcept {
        return appendPrinted(m_text, composed(conversion, "", conversion.letter, "").data(),
                             m_width, argument);
    }

    // The conversion on its own: each of its flags once, its numbers as arguments.
    static std::array<char, 16> composed(const Conversion& conversion, std::string_view modifier,
                                         char letter, std::string_view precision) noexcept {
        std::array<char, 16> format{'%'};
        char* end = format.data() + 1;
        for (const char flag : std::string_view("-+ #0'"))
            if (conversion.flags.find(flag) != std::string_view::npos) *end++ = flag;
        *end++ = '*';
        end += precision.copy(end, precision.size());
        end += modifier.copy(end, modifier.size());
        *end = letter;
        return format;
    }

    TextBuffer& m_text;
    const Arguments& m_arguments;
    int m_error = errno;  // for "%m", before a C library call changes it
    int m_width = 0;      // of the conversion at hand
    int m_precision = 0;  // likewise; negative: none
};

}  // namespace

void appendMessage(TextBuffer& text, std::string_view format, Objects objects,
                   va_list arguments) noexcept {
    if (format.find('%') == std::string_view::npos) {
        text.append(format);
        return;
    }
    Arguments collected(arguments);
    // Where positions may stand, a later conversion may name an earlier argument.
    if (format.find('$') != std::string_view::npos)
        walk(
            format, objects, [](std::string_view) {},
            [&collected](const Conversion& conversion) {
                collected.note(conversion);
                return true;
            });
    Formatter formatter(text, collected);
    const std::string_view rest = walk(
        format, objects, [&text](std::string_view between) { text.append(between); },
        [&](const Conversion& conversion) {
            collected.note(conversion);
            collected.collect();
            if (!collected.reach(conversion)) return false;
            if (!formatter.append(conversion)) text.append(conversion.text);
            return !text.isCut();
        });
    text.append(rest);
}

}  // namespace veltra::detail
