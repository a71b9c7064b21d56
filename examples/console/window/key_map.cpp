// SPDX-License-Identifier: MIT
#include "key_map.h"

#include "veltra/audio/key_code_converter.h"

#include <algorithm>
#include <array>

namespace veltra::console {

namespace {

struct PositionKey {
    std::uint16_t hardwareCode;
    std::uint16_t keyCode;  // as QKKeyCodeConverter names the place
};

// In the order of their notes; in comments, what an American keyboard has there.
constexpr std::array<PositionKey, kPositionKeys> kKeys{{
    {38, 0x00},  // A
    {25, 0x0D},  // W
    {39, 0x01},  // S
    {26, 0x0E},  // E
    {40, 0x02},  // D
    {41, 0x03},  // F
    {28, 0x11},  // T
    {42, 0x05},  // G
    {29, 0x10},  // Y
    {43, 0x04},  // H
    {30, 0x20},  // U
    {44, 0x26},  // J
    {45, 0x28},  // K
    {32, 0x1F},  // O
    {46, 0x25},  // L
    {33, 0x23},  // P
    {47, 0x29},  // ;
    {48, 0x27},  // '
}};
constexpr PositionKey kDown{52, 0x06};  // Z
constexpr PositionKey kUp{53, 0x07};    // X

std::string labelOf(const PositionKey& key) {
    return QKKeyCodeConverter::translateKeyCode(key.keyCode).value_or(std::string());
}

}  // namespace

std::optional<int> semitoneOfKey(std::uint16_t hardwareCode) {
    const auto* const found = std::find_if(
        kKeys.begin(), kKeys.end(),
        [hardwareCode](const PositionKey& key) { return key.hardwareCode == hardwareCode; });
    if (found == kKeys.end()) return std::nullopt;
    return static_cast<int>(found - kKeys.begin());
}

int octaveOfKey(std::uint16_t hardwareCode) {
    if (hardwareCode == kDown.hardwareCode) return -1;
    return hardwareCode == kUp.hardwareCode ? 1 : 0;
}

std::vector<std::string> labelsOfPositionKeys() {
    std::vector<std::string> labels;
    std::transform(kKeys.begin(), kKeys.end(), std::back_inserter(labels), labelOf);
    return labels;
}

OctaveKeyLabels labelsOfOctaveKeys() {
    OctaveKeyLabels labels{labelOf(kDown), labelOf(kUp)};
    return labels.down.empty() || labels.up.empty() ? OctaveKeyLabels() : labels;
}

}  // namespace veltra::console
