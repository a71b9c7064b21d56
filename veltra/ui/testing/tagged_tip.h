// SPDX-License-Identifier: MIT
// What a tool tip says, with the number of the place that asks.
#pragma once

#include "veltra/ui/tool_tip.h"

#include <string>

namespace veltra::testing {

struct TaggedTip final : Anchored, ToolTipSource {
    std::string text = "7";
    std::string stringForTag(std::int32_t tag) override { return text + std::to_string(tag); }
};

}  // namespace veltra::testing
