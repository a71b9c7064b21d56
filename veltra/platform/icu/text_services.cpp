// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/icu/email_pattern.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>

#include <unicode/ucnv.h>
#include <unicode/uidna.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace veltra {

namespace {

// The whole encoding, read from ICU once: afterwards nothing allocates, locks or can fail.
class LegacyTable {
public:
    // Throws when ICU has no such converter or memory is out.
    LegacyTable() {
        UErrorCode error = U_ZERO_ERROR;
        const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
            ucnv_open("macintosh", &error), &ucnv_close);
        std::array<char, kCount> bytes{};
        for (std::size_t index = 0; index < kCount; ++index)
            bytes[index] = static_cast<char>(index);
        const std::int32_t length = U_SUCCESS(error)
                                        ? ucnv_toUChars(converter.get(), m_units.data(), kCount,
                                                        bytes.data(), kCount, &error)
                                        : 0;
        if (U_FAILURE(error) || length != kCount) throw std::runtime_error("no converter");
        for (std::size_t index = 0; index < kCount; ++index)
            m_byUnit[index] = {m_units[index], bytes[index]};
        std::sort(m_byUnit.begin(), m_byUnit.end(), precedes);
    }

    char16_t unitOf(char byte) const noexcept { return m_units[static_cast<unsigned char>(byte)]; }

    char byteOf(char16_t unit, char substitute) const noexcept {
        const Pair wanted{unit, '\0'};
        const auto* const found =
            std::lower_bound(m_byUnit.data(), m_byUnit.data() + kCount, wanted, precedes);
        return found != m_byUnit.data() + kCount && found->unit == unit ? found->byte : substitute;
    }

private:
    static constexpr std::size_t kCount = 256;

    struct Pair {
        char16_t unit;
        char byte;
    };

    static bool precedes(const Pair& one, const Pair& other) noexcept {
        return one.unit < other.unit;
    }

    std::array<char16_t, kCount> m_units{};
    std::array<Pair, kCount> m_byUnit{};
};

// Null when it cannot be made; the next call tries again.
const LegacyTable* legacyTable() noexcept {
    const NoCancellation whileFilesAreRead;
    try {
        static const LegacyTable table;
        return &table;
    } catch (const std::exception&) {  // no memory, or no such converter
        return nullptr;
    }
}

// Null when it cannot be had.
const UNormalizer2* canonicalForms() noexcept {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* const forms = unorm2_getNFDInstance(&error);
    return U_SUCCESS(error) ? forms : nullptr;
}

constexpr std::size_t kLongestText = 500'000'000;

struct Source {
    const char16_t* units;
    std::int32_t count;
};
struct Destination {
    char16_t* units;
    std::int32_t count;
};

std::int32_t toAsciiHostName(const Source& host, const Destination& ascii,
                             UErrorCode* error) noexcept {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // its successor is IDNA of 2008
    return uidna_IDNToASCII(host.units, host.count, ascii.units, ascii.count, UIDNA_DEFAULT,
                            nullptr, error);
#pragma GCC diagnostic pop
}

// ICU remembers for the life of the process that memory was out when it first looked for its
// tables. So it looks when the library is loaded.
[[maybe_unused]] const bool areTablesLoaded = [] {
    const NoCancellation whileFilesAreRead;
    char16_t ascii[16];
    UErrorCode error = U_ZERO_ERROR;
    toAsciiHostName({u"\u00FC", 1}, {ascii, 16}, &error);
    return legacyTable() != nullptr && canonicalForms() != nullptr && U_SUCCESS(error);
}();

// What `convert` writes, at the second try into as much room as it asked for.
template <typename Convert>
std::optional<std::u16string> converted(std::u16string_view text, Convert convert) noexcept {
    constexpr std::size_t kGrowth = 32;
    if (text.size() > kLongestText) return std::nullopt;
    return unlessOutOfMemory(std::nullopt, [&]() -> std::optional<std::u16string> {
        const Source source{text.data(), static_cast<std::int32_t>(text.size())};
        std::u16string result(text.size() + kGrowth, u'\0');
        const auto attempt = [&](UErrorCode* error) {
            return convert(source,
                           Destination{result.data(), static_cast<std::int32_t>(result.size())},
                           error);
        };
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t length = attempt(&error);
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            result.resize(static_cast<std::size_t>(length) + 1);
            error = U_ZERO_ERROR;
            length = attempt(&error);
        }
        if (U_FAILURE(error)) return std::nullopt;  // a warning is no failure
        result.resize(static_cast<std::size_t>(length));
        return result;
    });
}

class IcuTextServices final : public TextServices {
public:
    std::optional<std::size_t> toLegacy(std::u16string_view text, char substitute,
                                        std::span<char> destination) const noexcept override {
        const LegacyTable* const table = legacyTable();
        if (table == nullptr) return std::nullopt;
        std::size_t written = 0;
        for (const char16_t unit : text) {
            if (unit >= 0xDC00 && unit < 0xE000) continue;  // its first half stood for both
            if (written == destination.size()) break;
            destination[written++] = table->byteOf(unit, substitute);
        }
        return written;
    }

    std::optional<std::u16string> fromLegacy(std::string_view bytes) const noexcept override {
        const LegacyTable* const table = legacyTable();
        if (table == nullptr) return std::nullopt;
        return unlessOutOfMemory(std::nullopt, [&]() -> std::optional<std::u16string> {
            std::u16string text(bytes.size(), u'\0');
            std::transform(bytes.begin(), bytes.end(), text.begin(),
                           [table](char byte) { return table->unitOf(byte); });
            return text;
        });
    }

    std::optional<std::u16string> toUpper(std::u16string_view text) const noexcept override {
        return converted(text, [](const Source& from, const Destination& to, UErrorCode* error) {
            return u_strToUpper(to.units, to.count, from.units, from.count, "", error);
        });
    }

    std::optional<std::u16string> caseFolded(std::u16string_view text) const noexcept override {
        return converted(text, [](const Source& from, const Destination& to, UErrorCode* error) {
            return u_strFoldCase(to.units, to.count, from.units, from.count, U_FOLD_CASE_DEFAULT,
                                 error);
        });
    }

    std::optional<std::u16string> decomposed(std::u16string_view text) const noexcept override {
        const UNormalizer2* const forms = canonicalForms();
        if (forms == nullptr) return std::nullopt;
        return converted(text, [=](const Source& from, const Destination& to, UErrorCode* error) {
            return unorm2_normalize(forms, from.units, from.count, to.units, to.count, error);
        });
    }

    bool isCombining(char32_t code) const noexcept override {
        const UNormalizer2* const forms = canonicalForms();
        return forms != nullptr && unorm2_hasBoundaryBefore(forms, static_cast<UChar32>(code)) == 0;
    }

    std::optional<bool> matchesEmailPattern(std::u16string_view text) const noexcept override {
        return matchesCompiledEmailPattern(text);
    }

    std::optional<std::u16string> asciiHostName(std::u16string_view host) const noexcept override {
        return converted(host, toAsciiHostName);
    }
};

}  // namespace

const TextServices& platformTextServices() noexcept {
    static const Immortal<IcuTextServices> services;
    return *services;
}

}  // namespace veltra
