// SPDX-License-Identifier: MIT
// What the framework needs for text beyond the forms of Unicode: capital letters, forms that make
// texts comparable, one pattern, host names in ASCII, and the encoding that file systems used for
// names before Unicode, which is Mac Roman.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace veltra {

class TextServices;
extern template class VELTRA_EXPORT Installable<const TextServices>;

// The platform's own have a converter when the library was built with ICU.
class VELTRA_EXPORT TextServices : public Installable<const TextServices> {
public:
    virtual ~TextServices();

    // Writes `text` (well-formed UTF-16) in the legacy encoding, as much as fits: one byte for each
    // character, `substitute` where the encoding lacks it. Returns how many bytes were written;
    // nothing when there is no converter.
    // Thread: any. Realtime-safe: no (the first call loads the converter).
    virtual std::optional<std::size_t> toLegacy(std::u16string_view text, char substitute,
                                                std::span<char> destination) const noexcept = 0;

    // The UTF-16 of a text in the legacy encoding; nothing when there is no converter or memory is
    // out.
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::u16string> fromLegacy(std::string_view bytes) const noexcept = 0;

    // The text (well-formed UTF-16) in capital letters, in no particular language: U+00DF becomes
    // "SS". Nothing when there are no tables of letters, which is the default, or memory is out.
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::u16string> toUpper(std::u16string_view text) const noexcept;

    // The text (well-formed UTF-16) in the letters by which texts are compared without regard to
    // case, in no particular language: U+00DF becomes "ss". Nothing as for toUpper().
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::u16string> caseFolded(std::u16string_view text) const noexcept;

    // The text (well-formed UTF-16) with its letters and accents taken apart and the accents in
    // canonical order (Unicode's form D). Nothing as for toUpper().
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::u16string> decomposed(std::u16string_view text) const noexcept;

    // Whether a code point combines with the one before it, as accents do. False by default.
    // Thread: any. Realtime-safe: yes.
    virtual bool isCombining(char32_t code) const noexcept;

    // Whether the whole text matches the pattern of an e-mail address:
    //     ^[a-zA-Z0-9\._-]+@(?:[a-zA-Z0-9\.-]+\.)+[a-zA-Z0-9\.-]{2,4}$
    // False also when that takes too many steps, as it does for some texts that do not match, and
    // when memory is out. Nothing when there are no patterns, which is the default.
    // Thread: any. Realtime-safe: no.
    virtual std::optional<bool> matchesEmailPattern(std::u16string_view text) const noexcept;

    // A host name (well-formed UTF-16) in ASCII, by IDNA of 2003: labels that have other letters
    // become "xn--" and their Punycode. Nothing when it has no such form, when there is no
    // converter, which is the default, and when memory is out.
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::u16string> asciiHostName(std::u16string_view host) const noexcept;
};

}  // namespace veltra
