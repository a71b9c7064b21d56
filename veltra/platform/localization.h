// SPDX-License-Identifier: MIT
// The words that controls show to the user, in the user's language.
//
//   class Catalogue final : public LocalizedStrings {
//       std::string stringForKey(std::string_view key) const override { return translate(key); }
//   };
//   LocalizedStrings::install(&catalogue);      // before the first window opens
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <string>
#include <string_view>

namespace veltra {

class LocalizedStrings;
extern template class VELTRA_EXPORT Installable<const LocalizedStrings>;

// Without a catalogue every key is returned as it is.
class VELTRA_EXPORT LocalizedStrings : public Installable<const LocalizedStrings> {
public:
    virtual ~LocalizedStrings();

    // The translation, in UTF-8, of a key, which is the English text itself; the key where there is
    // no translation.
    // Thread: main. Realtime-safe: no.
    virtual std::string stringForKey(std::string_view key) const = 0;
};

// LocalizedStrings::current().stringForKey(key).
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT std::string localizedString(std::string_view key);

}  // namespace veltra
