// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/string_compare.h"

#include "veltra/Source/Extensions/detail/word_search.h"
#include "veltra/base/ascii_case.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/utf16_text.h"
#include "veltra/base/utf8.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/platform/text_services.h"

#include <algorithm>
#include <string>
#include <vector>

namespace veltra {

namespace {

constexpr std::size_t kInside = SIZE_MAX;       // no character of the text begins here
constexpr char32_t kIllFormedBytes = 0x110000;  // the first value that is no code point

constexpr bool isAscii(char byte) noexcept {
    return static_cast<unsigned char>(byte) < 0x80;
}

// A text in the form in which it is compared unit by unit, and the way back.
class ComparedText {
public:
    ComparedText(std::string_view text, CompareOptions options)
        : m_isFolded(options.contains(CompareOption::CaseInsensitive)),
          m_isLiteral(options.contains(CompareOption::Literal)) {
        m_units.reserve(text.size());
        m_places.reserve(text.size() + 1);
        for (std::size_t place = 0; place < text.size();)
            place += appendCharacter(text.substr(place), place);
        m_places.push_back(text.size());
    }

    const std::u32string& units() const noexcept { return m_units; }

    // Where in the text the character of a unit begins, or kInside.
    std::size_t placeOf(std::size_t unit) const noexcept { return m_places[unit]; }

    void dropLeadingZeros() {
        const auto isDigit = [](char32_t unit) { return unit >= U'0' && unit <= U'9'; };
        std::u32string kept;
        bool isAfterDigit = false;
        for (std::size_t unit = 0; unit < m_units.size(); ++unit) {
            const bool isDropped = m_units[unit] == U'0' && !isAfterDigit &&
                                   unit + 1 < m_units.size() && isDigit(m_units[unit + 1]);
            if (isDropped) continue;
            kept.push_back(m_units[unit]);
            isAfterDigit = isDigit(m_units[unit]);
        }
        m_units = std::move(kept);
    }

private:
    // Returns the length of the character in bytes.
    std::size_t appendCharacter(std::string_view rest, std::size_t place) {
        const std::size_t length = lengthOfCharacter(rest);
        const std::size_t before = m_units.size();
        if (length == 1 && isAscii(rest[0])) {
            const auto code = static_cast<char32_t>(rest[0]);
            m_units.push_back(m_isFolded ? smallAscii(code) : code);
        } else if (!firstCharacter(rest).isWellFormed) {
            for (const char byte : rest.substr(0, length))
                m_units.push_back(kIllFormedBytes + static_cast<unsigned char>(byte));
        } else {
            appendForm(rest.substr(0, length));
        }
        m_places.resize(m_units.size(), kInside);
        if (m_units.size() > before) m_places[before] = place;
        return length;
    }

    // A code point with the marks that combine with it, unless texts are compared literally. No
    // language needs more than 30, and more would take time that grows with their square.
    std::size_t lengthOfCharacter(std::string_view rest) const noexcept {
        const DecodedCharacter first = firstCharacter(rest);
        std::size_t length = first.length;
        if (m_isLiteral || !first.isWellFormed) return length;
        constexpr int kMostMarks = 30;
        for (int mark = 0; mark < kMostMarks && length < rest.size() && !isAscii(rest[length]);
             ++mark) {
            const DecodedCharacter next = firstCharacter(rest.substr(length));
            if (!next.isWellFormed || !m_services.isCombining(next.code)) break;
            length += next.length;
        }
        return length;
    }

    // REQUIRES: it is well-formed.
    void appendForm(std::string_view character) {
        std::u16string form = utf16From(character).value_or(std::u16string());
        if (m_isFolded) std::ranges::transform(form, form.begin(), smallAscii<char16_t>);
        const auto become = [&form](std::optional<std::u16string> other) {
            if (other) form = *std::move(other);
        };
        if (!m_isLiteral) become(m_services.decomposed(form));
        if (m_isFolded) {
            become(m_services.caseFolded(form));
            if (!m_isLiteral) become(m_services.decomposed(form));
        }
        for (std::u16string_view rest = form; !rest.empty();) {
            const DecodedCharacter next = firstCharacter(rest);
            m_units.push_back(next.code);
            rest.remove_prefix(next.length);
        }
    }

    const TextServices& m_services = TextServices::current();
    const bool m_isFolded;
    const bool m_isLiteral;
    std::u32string m_units;
    std::vector<std::size_t> m_places;  // one for each unit, and the end
};

// The place that is wanted first, by its options and by isWanted(place); npos when there is none.
template <typename Unit, typename IsWanted>
std::size_t placeOf(std::basic_string_view<Unit> sought, std::basic_string_view<Unit> text,
                    CompareOptions options, IsWanted isWanted) {
    const bool isBackwards = options.contains(CompareOption::Backwards);
    if (!options.contains(CompareOption::Anchored))
        return isBackwards ? detail::lastPlace(text, sought, isWanted)
                           : detail::firstPlace(text, sought, isWanted);
    const bool isThere = isBackwards ? text.ends_with(sought) : text.starts_with(sought);
    const std::size_t place = isThere && isBackwards ? text.size() - sought.size() : 0;
    return isThere && isWanted(place) ? place : std::basic_string_view<Unit>::npos;
}

std::optional<TextRange> findCharacters(std::string_view text, std::string_view sought,
                                        CompareOptions options) {
    const ComparedText in(text, options);
    const ComparedText what(sought, options);
    const std::u32string_view units = what.units();
    if (units.empty()) return std::nullopt;
    const auto isWhole = [&](std::size_t place) {
        return in.placeOf(place) != kInside && in.placeOf(place + units.size()) != kInside;
    };
    const std::size_t place = placeOf<char32_t>(units, in.units(), options, isWhole);
    if (place == std::u32string_view::npos) return std::nullopt;
    const std::size_t begin = in.placeOf(place);
    return TextRange{begin, in.placeOf(place + units.size()) - begin};
}

std::optional<TextRange> findBytes(std::string_view text, std::string_view sought,
                                   CompareOptions options) {
    const auto always = [](std::size_t) { return true; };
    const std::size_t place = placeOf(sought, text, options, always);
    if (place == std::string_view::npos) return std::nullopt;
    return TextRange{place, sought.size()};
}

}  // namespace

bool equals(std::string_view one, std::string_view other, CompareOptions options) noexcept {
    if (one == other) return true;
    return unlessOutOfMemory(false, [&] {
        ComparedText left(one, options);
        ComparedText right(other, options);
        if (options.contains(CompareOption::Numeric)) {
            left.dropLeadingZeros();
            right.dropLeadingZeros();
        }
        return left.units() == right.units();
    });
}

std::optional<TextRange> find(std::string_view text, std::string_view sought,
                              CompareOptions options) noexcept {
    if (sought.empty()) return std::nullopt;
    const bool hasOneForm =
        (options.contains(CompareOption::Literal) && isWellFormedUtf8(sought)) ||
        (std::all_of(text.begin(), text.end(), isAscii) &&
         std::all_of(sought.begin(), sought.end(), isAscii));
    const bool areBytesEnough = hasOneForm && !options.contains(CompareOption::CaseInsensitive);
    return unlessOutOfMemory(std::optional<TextRange>(), [&] {
        return areBytesEnough ? findBytes(text, sought, options)
                              : findCharacters(text, sought, options);
    });
}

}  // namespace veltra
