// SPDX-License-Identifier: MIT
// Which keys of the computer play which notes: those that lie as on a piano, whatever letters the
// layout puts on them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

// How many keys there are: from a C up to the F above the next one.
inline constexpr int kPositionKeys = 18;

// Semitones above the C that the first key plays. `hardwareCode` is Event::keyCode.
std::optional<int> semitoneOfKey(std::uint16_t hardwareCode);

// -1 and 1 for the keys that shift by an octave, down and up, else 0.
int octaveOfKey(std::uint16_t hardwareCode);

// What the user's layout writes on each key, from the first one up, in capitals; empty where it
// tells nothing.
std::vector<std::string> labelsOfPositionKeys();
// "Z" and "X", say; both empty where the layout tells nothing.
struct OctaveKeyLabels {
    std::string down;
    std::string up;
};
OctaveKeyLabels labelsOfOctaveKeys();

}  // namespace veltra::console
