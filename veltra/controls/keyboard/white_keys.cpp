// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/white_keys.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra {

namespace {

constexpr std::int32_t kNotes = 128;
constexpr std::int32_t kOctave = 12;
constexpr std::int32_t kWhiteKeysInOctave = 7;

constexpr std::array<std::int32_t, kWhiteKeysInOctave> kSemitones{0, 2, 4, 5, 7, 9, 11};

// The last white key at or below each semitone of an octave.
constexpr std::array<std::int32_t, kOctave> kWhiteKeys{0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};

constexpr bool isNote(std::int32_t note) noexcept {
    return note >= 0 && note < kNotes;
}

// Both count from note 0.
constexpr std::int32_t noteOf(std::int32_t whiteKey) noexcept {
    return whiteKey / kWhiteKeysInOctave * kOctave +
           kSemitones[static_cast<std::size_t>(whiteKey % kWhiteKeysInOctave)];
}

constexpr std::int32_t whiteKeyOf(std::int32_t note) noexcept {
    return note / kOctave * kWhiteKeysInOctave +
           kWhiteKeys[static_cast<std::size_t>(note % kOctave)];
}

constexpr bool isBlack(std::int32_t note) noexcept {
    return noteOf(whiteKeyOf(note)) != note;
}

constexpr std::int32_t firstKey(std::int32_t firstNote) noexcept {
    return whiteKeyOf(firstNote) + (isBlack(firstNote) ? 1 : 0);
}

constexpr std::int32_t kKeys = whiteKeyOf(kNotes - 1) + 1;
static_assert(kKeys == 75);

}  // namespace

std::int32_t VLNoteForWhiteKey(std::int32_t whiteKey, std::int32_t firstNote) noexcept {
    if (whiteKey < 0 || whiteKey >= VLWhiteKeyCount(firstNote)) return -1;
    return noteOf(firstKey(firstNote) + whiteKey);
}

std::int32_t VLWhiteKeyForNote(std::int32_t note, std::int32_t firstNote) noexcept {
    if (!isNote(note) || !isNote(firstNote)) return -1;
    const std::int32_t key = whiteKeyOf(note) - firstKey(firstNote);
    return key >= 0 ? key : -1;
}

std::int32_t VLWhiteKeyCount(std::int32_t firstNote) noexcept {
    return isNote(firstNote) ? kKeys - firstKey(firstNote) : 0;
}

bool VLIsBlackKey(std::int32_t note) noexcept {
    return isNote(note) && isBlack(note);
}

}  // namespace veltra
