// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/fader_scale.h"

#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

TEST(FaderScales, RunThroughTheirTableBothWays) {
    const std::pair<double, double> rows[] = {{-90, 0},   {-75, .025}, {-60, .05}, {-50, .1},
                                              {-40, .15}, {-30, .25},  {-20, .4},  {-10, .6},
                                              {-3, .74},  {0, .8},     {5, .9},    {10, 1}};
    for (const auto& [decibels, travel] : rows) {
        EXPECT_NEAR(FaderScale::travelForDecibels(decibels), travel, 1e-15);
        if (travel > 0) {
            EXPECT_NEAR(FaderScale::decibelsForTravel(travel), decibels, 1e-12);
            EXPECT_NEAR(FaderScale::travelForGain(FaderScale::gainForTravel(travel)), travel,
                        1e-12);
        }
    }
    EXPECT_EQ(FaderScale::travelForDecibels(0.0), 0.8);
    EXPECT_EQ(FaderScale::decibelsForTravel(0.8), 0.0);
    EXPECT_EQ(FaderScale::gainForTravel(0.8), 1.0);
    EXPECT_EQ(FaderScale::gainForTravel(0.0), 0.0);
    EXPECT_EQ(FaderScale::travelForGain(0.0), 0.0);
    EXPECT_EQ(FaderScale::travelForDecibels(99), 1.0);
    EXPECT_EQ(FaderScale::decibelsForTravel(7), 10.0);
    for (const double none : {0.0, -1.0, static_cast<double>(NAN)})
        EXPECT_EQ(FaderScale::decibelsForTravel(none), -INFINITY);
    EXPECT_EQ(FaderScale::travelForDecibels(NAN), 0.0);
}

TEST(FaderScales, SayDecibelsAndWriteWhatHasRoom) {
    const std::pair<double, const char*> rows[] = {
        {-3, "\u22123.0 dB"},     {0, "0.0 dB"},           {-0.04, "0.0 dB"},
        {0.06, "+0.1 dB"},        {10, "+10.0 dB"},        {-70, "\u2212\u221E dB"},
        {NAN, "\u2212\u221E dB"}, {INFINITY, "+\u221E dB"}};
    for (const auto& [decibels, text] : rows)
        EXPECT_EQ(FaderScale::text(decibels), text);
    const auto marks = FaderScale::marks();
    const auto labels = [&](float length) {
        std::vector<float> places;
        for (const SliderMark& mark : marks)
            places.push_back(static_cast<float>(mark.value) * length);
        std::string text;
        for (const std::size_t i : labelsWithRoom(marks, places, 15.0F))
            text += marks[i].label + ' ';
        return text;
    };
    EXPECT_EQ(labels(400),
              "0 +10 \u221210 \u221220 \u221240 \u2212\u221E +5 \u22125 \u221230 "
              "\u221260 ");
    EXPECT_EQ(labels(150), "0 +10 \u221210 \u221220 \u221240 \u2212\u221E +5 \u22125 \u221230 ");
    EXPECT_EQ(labels(75), "0 +10 \u221210 \u221220 \u221240 ");
    EXPECT_EQ(labels(0), "0 ");
}

}  // namespace
}  // namespace veltra
