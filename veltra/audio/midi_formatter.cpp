// SPDX-License-Identifier: MIT
#include "veltra/audio/midi_formatter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

namespace veltra {

namespace {

constexpr std::int32_t kNotesPerOctave = 12;
constexpr std::int32_t kLowestOctave = -2;
constexpr const char* kNoteNames[kNotesPerOctave] = {"C",  "C#", "D",  "D#", "E",  "F",
                                                     "F#", "G",  "G#", "A",  "A#", "B"};

std::optional<std::int32_t> numberIn(const PropertyValue& value) noexcept {
    using Limits = std::numeric_limits<std::int32_t>;
    switch (value.kind()) {
        case PropertyValue::Kind::Bool:
        case PropertyValue::Kind::Integer:
            return static_cast<std::int32_t>(value.asInteger());
        case PropertyValue::Kind::Real: {
            const double number = value.asReal();
            if (std::isnan(number)) return 0;
            return static_cast<std::int32_t>(
                std::clamp<double>(number, Limits::min(), Limits::max()));
        }
        default:
            return std::nullopt;
    }
}

std::string signedDecimal(std::int32_t value) {
    if (value == 0) return "\u00B1 0";
    std::string text = std::to_string(value);
    if (value > 0) text.insert(text.begin(), '+');
    return text;
}

std::string hexadecimal(std::int32_t value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), value <= 14 ? "0x0%1X" : "0x%2X",
                  static_cast<unsigned>(value));
    return text.data();
}

std::string noteName(std::int32_t value) {
    std::int32_t octave = value / kNotesPerOctave, note = value % kNotesPerOctave;
    if (note < 0) {
        note += kNotesPerOctave;
        --octave;
    }
    return kNoteNames[note] + std::to_string(octave + kLowestOctave);
}

}  // namespace

void QKMIDIFormatter::setNoteStyle(std::int32_t style) noexcept {
    m_noteStyle = style;
}

std::string QKMIDIFormatter::stringForObjectValue(const PropertyValue& value) const {
    const std::optional<std::int32_t> number = numberIn(value);
    if (!number.has_value()) return {};
    switch (m_noteStyle) {
        case kDecimal:
            return std::to_string(*number);
        case kSigned:
            return signedDecimal(*number);
        case kHexadecimal:
            return hexadecimal(*number);
        case kNoteName:
            return noteName(*number);
        default:
            return {};
    }
}

}  // namespace veltra
