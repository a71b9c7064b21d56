// SPDX-License-Identifier: MIT
// Names of notes as controls show them.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <string>

namespace veltra {

// "C3", "F#4", "C−2" (U+2212 for octaves below 0). `octaveOfMiddleC` is the number that follows the
// name of note 60: 3 as here, 4 in some places. Empty where `note` is not from 0 to 127.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT std::string noteName(std::int32_t note, std::int32_t octaveOfMiddleC = 3);

}  // namespace veltra
