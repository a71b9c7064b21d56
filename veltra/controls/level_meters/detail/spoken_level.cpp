// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/spoken_level.h"

#include "veltra/base/number_text.h"
#include "veltra/platform/localization.h"

#include <cmath>

namespace veltra::detail {

std::string spokenLevel(double decibels, double quietest, const std::string& unit) {
    if (!(decibels > quietest)) return localizedString("silence");
    const std::string digits(
        std::isinf(decibels) ? "\u221E" : NumberText::fixed(std::fabs(decibels), 1).view());
    const char* const sign = decibels < 0.0 && digits != "0.0" ? "\u2212" : "";
    return sign + digits + ' ' + localizedString(unit);
}

}  // namespace veltra::detail
