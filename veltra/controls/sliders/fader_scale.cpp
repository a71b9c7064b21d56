// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/fader_scale.h"

#include "veltra/base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace veltra {

namespace {

struct Knot {
    double decibels;
    double travel;
};

constexpr std::array<Knot, 8> kKnots{{
    {-90.0, 0.00},
    {-60.0, 0.05},
    {-40.0, 0.15},
    {-30.0, 0.25},
    {-20.0, 0.40},
    {-10.0, 0.60},
    {0.0, FaderScale::kZeroTravel},
    {10.0, 1.00},
}};

constexpr double kSilence = -std::numeric_limits<double>::infinity();
constexpr double kShownAsSilence = -70.0;

// On the knots exactly what they say.
double along(double value, double Knot::*from, double Knot::*to) noexcept {
    std::size_t upper = 1;
    while (upper + 1 < kKnots.size() && value > kKnots[upper].*from)
        ++upper;
    const Knot& low = kKnots[upper - 1];
    const Knot& high = kKnots[upper];
    if (!(value < high.*from)) return high.*to;
    return low.*to + (value - low.*from) * (high.*to - low.*to) / (high.*from - low.*from);
}

struct Mark {
    double decibels;
    SliderMark::Kind kind;
    const char* label;
};

using enum SliderMark::Kind;
constexpr std::array<Mark, 18> kMarks{{
    {0.0, Reference, "0"},
    {10.0, Major, "+10"},
    {-10.0, Major, "\u221210"},
    {-20.0, Major, "\u221220"},
    {-40.0, Major, "\u221240"},
    {-90.0, Major, "\u2212\u221E"},
    {5.0, Major, "+5"},
    {-5.0, Major, "\u22125"},
    {-30.0, Major, "\u221230"},
    {-60.0, Major, "\u221260"},
    {7.5, Minor, ""},
    {2.5, Minor, ""},
    {-2.5, Minor, ""},
    {-7.5, Minor, ""},
    {-15.0, Minor, ""},
    {-25.0, Minor, ""},
    {-35.0, Minor, ""},
    {-50.0, Minor, ""},
}};

}  // namespace

double FaderScale::travelForDecibels(double decibels) noexcept {
    if (!(decibels > kKnots.front().decibels)) return 0.0;
    return along(decibels, &Knot::decibels, &Knot::travel);
}

double FaderScale::decibelsForTravel(double travel) noexcept {
    if (!(travel > 0.0)) return kSilence;
    return along(travel, &Knot::travel, &Knot::decibels);
}

double FaderScale::gainForTravel(double travel) noexcept {
    return std::pow(10.0, decibelsForTravel(travel) / 20.0);
}

double FaderScale::travelForGain(double gain) noexcept {
    return travelForDecibels(20.0 * std::log10(std::abs(gain)));
}

std::string FaderScale::text(double decibels) {
    if (!(decibels > kShownAsSilence)) return "\u2212\u221E dB";
    if (std::isinf(decibels)) return "+\u221E dB";
    const std::string_view sign = decibels <= -0.05 ? "\u2212" : decibels >= 0.05 ? "+" : "";
    std::string text(sign);
    text += NumberText::fixed(sign.empty() ? 0.0 : std::abs(decibels), 1).view();
    return text + " dB";
}

std::vector<SliderMark> FaderScale::marks() {
    std::vector<SliderMark> marks;
    marks.reserve(kMarks.size());
    for (const Mark& mark : kMarks)
        marks.push_back({travelForDecibels(mark.decibels), mark.kind, mark.label});
    return marks;
}

}  // namespace veltra
