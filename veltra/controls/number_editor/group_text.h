// SPDX-License-Identifier: MIT
// The groups of a number as one text, for the clipboard: "0004.3.0456".
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace veltra {

// The whole numbers that stand in a text (UTF-8), as the values of `count` groups. Whatever is
// between two rows of digits parts them. A minus, "-" or U+2212, in front of the first row of
// digits belongs to it. Missing groups are 0; digits beyond 32 bits read as the limits. Nothing
// when there is no digit, or more numbers than groups.
VELTRA_EXPORT std::optional<std::vector<std::int32_t>> groupsInText(std::string_view text,
                                                                    std::size_t count);

}  // namespace veltra
