// SPDX-License-Identifier: MIT
#include "times.h"

#include "text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace veltra::console {

std::string decimalText(double value, int decimals) {
    std::array<char, 48> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            std::chars_format::fixed, decimals);
    return error == std::errc() ? std::string(text.data(), end) : std::string();
}

std::string clockTime(double seconds) {
    const auto whole = static_cast<long long>(std::max(seconds, 0.0));
    if (whole >= 3600)
        return formatted("%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    return formatted("%lld:%02lld", whole / 60, whole % 60);
}

std::string preciseTime(double seconds) {
    const auto tenths = static_cast<long long>(std::floor(std::max(seconds, 0.0) * 10.0));
    const long long whole = tenths / 10;
    return clockTime(static_cast<double>(whole)) + formatted(".%lld", tenths % 10);
}

double axisStep(double length, float width, float distance) {
    for (const double step : {0.25, 0.5, 1.0, 2.0, 5.0, 10.0, 30.0, 60.0, 120.0, 300.0, 600.0}) {
        if (step / length * static_cast<double>(width) >= static_cast<double>(distance))
            return step;
    }
    return 3600.0;
}

std::string axisText(double seconds, double step) {
    if (seconds == 0.0) return "0";
    if (seconds >= 60.0) return clockTime(seconds);
    const int decimals = step >= 1.0 ? 0 : step == 0.25 ? 2 : 1;
    return decimalText(seconds, decimals);
}

}  // namespace veltra::console
