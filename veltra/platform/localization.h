// SPDX-License-Identifier: MIT
// The words that controls say to the user, in the user's language.
//
//   class Catalogue final : public LocalizedStrings {
//       std::string stringForKey(std::string_view key) const override { return translate(key); }
//   };
//   LocalizedStrings::install(&catalogue);      // before the first window opens
#pragma once

#include "veltra/export.h"

#include <string>
#include <string_view>

namespace veltra {

class VELTRA_EXPORT LocalizedStrings {
public:
    LocalizedStrings() = default;
    LocalizedStrings(const LocalizedStrings&) = delete;
    LocalizedStrings& operator=(const LocalizedStrings&) = delete;
    virtual ~LocalizedStrings();

    // The text, in UTF-8, for a key, which is the English text itself. Answer the key where there
    // is no translation.
    // Thread: main. Realtime-safe: no.
    virtual std::string stringForKey(std::string_view key) const = 0;

    // The installed ones, else those that answer every key with itself.
    // Thread: any. Realtime-safe: yes.
    static const LocalizedStrings& current() noexcept;

    // Puts `strings` in force (not owned; must stay alive until replaced); null goes back to the
    // keys themselves. Answers what was installed before, null for the keys themselves.
    // Thread: any. Realtime-safe: yes.
    static const LocalizedStrings* install(const LocalizedStrings* strings) noexcept;
};

// LocalizedStrings::current().stringForKey(key).
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT std::string localizedString(std::string_view key);

}  // namespace veltra
