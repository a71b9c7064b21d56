// SPDX-License-Identifier: MIT
// What the host program says about itself: its name and its versions, by key.
//
//   setBundleInformation({{{"CFBundleName", "Mixer"}, {"CFBundleShortVersionString", "2.1"}}});
//
// A host that hands nothing over can put the same into a file instead: Info.json, an object of JSON
// beside the executable, else in the host's data folder (resources.h). The keys that the framework
// reads are
//
//   CFBundleName                  the application's name, for people
//   CFBundleShortVersionString    its version, as "2.1"
//   CFBundleVersion               the number of this build among those of a version, as "14"
//   ProductBuildVersion           a mark of the build, as "C24"
#pragma once

#include "veltra/base/installable.h"
#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <optional>
#include <string>
#include <string_view>

namespace veltra {

class BundleInformation;
extern template class VELTRA_EXPORT Installable<const BundleInformation>;

// Where the keys are looked up. The framework's own looks into the dictionary that was handed over,
// else into the file, which is read once, when the first key is asked for.
class VELTRA_EXPORT BundleInformation : public Installable<const BundleInformation> {
public:
    virtual ~BundleInformation();

    // The text of a key; empty when there is none, and for values that are neither text nor number.
    // A number in the file is returned in the digits that stand there, "1.10" as "1.10". Throws
    // std::bad_alloc.
    // Thread: any. Realtime-safe: no.
    virtual std::string text(std::string_view key) const = 0;
};

// Hands the dictionary over; it stands for all keys, also those that it lacks. `nothing` goes back
// to the file, which is then read anew. Call it at start.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void setBundleInformation(
    std::optional<PropertyValue::Dictionary> dictionary) noexcept;

// Sets one key of the dictionary that was handed over; without one, starts with an empty one. False
// when memory is out: then nothing changed.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT bool setBundleInformationText(std::string_view key, std::string_view text) noexcept;

}  // namespace veltra
