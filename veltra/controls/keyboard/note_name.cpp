// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/note_name.h"

#include <array>

namespace veltra {

namespace {

constexpr std::int32_t kMiddleC = 60;
constexpr std::int32_t kOctave = 12;

constexpr std::array<const char*, kOctave> kNames{"C",  "C#", "D",  "D#", "E",  "F",
                                                  "F#", "G",  "G#", "A",  "A#", "B"};

}  // namespace

std::string noteName(std::int32_t note, std::int32_t octaveOfMiddleC) {
    if (note < 0 || note > 127) return {};
    const std::int64_t octave = std::int64_t{note / kOctave} - kMiddleC / kOctave + octaveOfMiddleC;
    std::string name = kNames[static_cast<std::size_t>(note % kOctave)];
    if (octave < 0) name += "\u2212";
    return name + std::to_string(octave < 0 ? -octave : octave);
}

}  // namespace veltra
