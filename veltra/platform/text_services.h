// SPDX-License-Identifier: MIT
// What the framework needs for text beyond the forms of Unicode: capital letters, and the encoding
// that file systems used for names before Unicode, which is Mac Roman.
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
};

}  // namespace veltra
