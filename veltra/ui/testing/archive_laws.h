// SPDX-License-Identifier: MIT
// What holds for all that is kept in an archive.
#pragma once

#include "veltra/ui/keyed_coder.h"

#include <string>

namespace veltra::testing {

template <typename T>
PropertyValue archiveOf(const T& object) {
    KeyedCoder coder;
    object.encodeWithCoder(coder);
    return coder.archive();
}

// Reads the archive of `changed` into `fresh`. There have to be so many entries that begin with
// `prefix`; each must be another than the fresh one's, else it would prove nothing, and must come
// back. Returns what is wrong.
template <typename T>
std::string archiveFaults(const T& changed, T& fresh, std::string_view prefix, std::size_t count) {
    const PropertyValue before = archiveOf(fresh);
    const PropertyValue kept = archiveOf(changed);
    fresh.decodeWithCoder(KeyedCoder(kept));
    const PropertyValue after = archiveOf(fresh);
    std::string faults;
    for (const auto& [key, value] : kept.asDictionary()) {
        if (!std::string_view(key).starts_with(prefix)) continue;
        --count;
        if (before[key] == value) faults += key + " is as before; ";
        if (!(after[key] == value)) faults += key + " is lost; ";
    }
    return count == 0 ? faults : faults + "not the number of entries";
}

}  // namespace veltra::testing
