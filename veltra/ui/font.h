// SPDX-License-Identifier: MIT
// Which letters to write with. The port turns it into what its toolkit knows; sizes need not be
// whole numbers.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace veltra {

// How heavy the strokes are. Where the family lacks a weight, the port takes the nearest.
enum class FontWeight : std::uint8_t { Regular, Medium, SemiBold, Bold };

struct VELTRA_EXPORT Font {
    std::string name;                         // of the family; empty: the system's
    float size = 13.0F;                       // points
    FontWeight weight = FontWeight::Regular;  // of the strokes
    bool hasEqualDigits = false;  // figures of one width, for numbers that change in place

    // What the system writes its own controls in, `size` points high.
    static Font systemFont(float size, FontWeight weight = FontWeight::Regular) {
        return {{}, size, weight, false};
    }
    // What users read their own text in. Here the system's font too.
    static Font userFont(float size) { return systemFont(size); }

    // Nothing when no family of that name is installed or `size` is not above 0. An empty name is
    // the system's font. To change the size alone, withSize() keeps all else.
    // Thread: main. Realtime-safe: no.
    static std::optional<Font> fontWithName(const std::string& name, float size,
                                            FontWeight weight = FontWeight::Regular,
                                            bool hasEqualDigits = false);

    // The same font in another size, in points.
    Font withSize(float newSize) const { return {name, newSize, weight, hasEqualDigits}; }

    // Whether all four fields are equal; nothing is asked of the port.
    friend bool operator==(const Font& left, const Font& right) = default;
};

}  // namespace veltra
