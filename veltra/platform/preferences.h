// SPDX-License-Identifier: MIT
// What the user decided about the current application, kept between launches: for the current
// user, on any host. Reading is cheap and touches no file after the first time, so that it may be
// done while memory is short.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace veltra {

// A preferences file that could not be understood. `keptAs` is where it was moved, empty when it
// could not be moved and still lies there.
struct DamagedPreferences {
    std::string file;    // its path
    std::string keptAs;  // a path, too
};

class Preferences;
extern template class VELTRA_EXPORT Installable<Preferences>;

// Install preferences while nobody reads any.
class VELTRA_EXPORT Preferences : public Installable<Preferences> {
public:
    virtual ~Preferences();

    // Null when the key is not set, or when memory is out. The first call on the platform's own
    // preferences reads the file; what cannot be read is empty.
    // Thread: any; until the file is read it may wait for a synchronise() in progress.
    // Realtime-safe: no.
    virtual PropertyValue value(std::string_view key) const noexcept = 0;

    // value() sees it at once; other processes and later launches see it after synchronise(). Null
    // removes the key. Ill-formed UTF-8 in keys is replaced as in PropertyValue. False when memory
    // is out: then nothing changed.
    // Thread: any. Realtime-safe: no.
    virtual bool setValue(std::string_view key, const PropertyValue& value) noexcept = 0;

    // Merges the keys changed here into what is stored now, which another process may have changed
    // meanwhile, and reads the rest of it. After an error the stored preferences are as they were,
    // and the changes wait for the next call. Without an error the result tests false.
    // Thread: any that may wait for a disk. Realtime-safe: no.
    virtual std::error_code synchronise() noexcept = 0;

    // Reads what is stored now; changes made here and not yet written stay in force. After an error
    // the values are as they were.
    // Thread: as synchronise(). Realtime-safe: no.
    virtual std::error_code reload() noexcept = 0;

    // The damaged file that was found last, once; nothing otherwise, and by default. Reporting it
    // is the caller's: this class writes no log. Thread: any. Realtime-safe: no.
    virtual std::optional<DamagedPreferences> takeDamageReport() noexcept;

    // Names the application whose preferences the platform's own are; by default the program's file
    // name. Call it at start. False once they were used, or when `name` cannot be part of a file
    // name (empty, over 200 bytes, a leading dot, a slash, control characters).
    // Thread: any. Realtime-safe: no.
    static bool setApplicationName(std::string_view name) noexcept;
};

}  // namespace veltra
