// SPDX-License-Identifier: MIT
// What is written and marked on the controls can be read, and what differs in meaning can be told
// apart by every kind of eyes: measured on pictures at every scale, in both appearances. Of a text,
// the pixel that differs most from its ground counts: where a stroke fills one.
#include "on_pictures.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/peak_readout.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/controls/number_editor/number_display.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/button.h"
#include "veltra/ui/testing/recording_canvas.h"
#include "veltra/ui/value_tip.h"

#include <functional>
#include <map>

namespace veltra::testing {
namespace {

using enum NumberEditorLook;

// Puts onto a card of 480 by 220 points what is shown.
using Show = std::function<void(CardPicture&)>;

constexpr Rect at(Size size) {
    return {{16, 16}, size};
}

Pixels shown(const Setting& setting, const Show& show) {
    CardPicture picture({480, 220}, setting);
    show(picture);
    return picture.draw();
}

// Which of the texts, on a card, cannot be seen whole.
std::string cutOff(const std::vector<RecordingCanvas::Call>& texts) {
    std::string cut;
    for (const RecordingCanvas::Call& call : texts) {
        const StyledText& text = call.styled;
        const float width = text.size().width, room = call.rect.size.width - width;
        const bool isCentred = text.alignment == TextAlignment::Center;
        const float left = text.alignment == TextAlignment::Left ? 0.0F : room;
        const float height = call.isAtTop ? call.rect.size.height : 0.74F * text.font.size;
        const float top = call.isAtTop ? call.rect.minY() : call.rect.center().y - height / 2;
        const Rect place{{call.rect.minX() + (isCentred ? room / 2 : left), top}, {width, height}};
        const Rect seen = call.clip.intersection({{}, {480, 220}});
        const bool isWhole = seen.united(place.inset(0.01F, 0.01F)) == seen;
        if (room < 0.0F || !isWhole) cut += "'" + text.string + "' ";
    }
    return cut;
}

// Of what differs most from the colour that there is most of.
double contrastIn(const Pixels& pixels, const Rect& rect, float scale) {
    const auto first = [scale](float points) {
        return static_cast<std::int32_t>(std::ceil(points * scale));
    };
    const auto end = [scale](float points) { return static_cast<std::int32_t>(points * scale); };
    std::map<std::uint32_t, int> counts;
    for (std::int32_t y = first(rect.minY()); y < end(rect.maxY()); ++y) {
        for (std::int32_t x = first(rect.minX()); x < end(rect.maxX()); ++x)
            ++counts[pixels.rgbAt(x, y)];
    }
    const auto ground = std::max_element(
        counts.begin(), counts.end(),
        [](const auto& one, const auto& other) { return one.second < other.second; });
    double best = 1.0;
    for (const auto& [color, count] : counts)
        best = std::max(best, contrast(color, ground->first));
    return best;
}

Show button(std::optional<Color> on, bool isOn, bool isPressed = false, bool isDisabled = false) {
    return [=](CardPicture& card) {
        auto& made = card.add<Button>(at({64, 24}), "Mute", ButtonCell::Kind::Toggle);
        made.setFont(themeFont(11.0F, FontWeight::SemiBold));
        made.buttonCell().setOnColor(on);
        made.setOn(isOn);
        made.cell()->setHighlighted(isPressed);
        made.setEnabled(!isDisabled);
    };
}

Show fader(double travel) {
    return [=](CardPicture& card) {
        auto& made = card.add<Slider>(at({64, 186}));
        setUpFader(QkSliderCell::replacedCellInSlider(made));
        made.setDoubleValue(travel);
    };
}

Show pan(double position) {
    return [=](CardPicture& card) {
        auto& made = card.add<Slider>(at({84, 28}));
        setUpPan(QkSliderCell::replacedCellInSlider(made));
        made.setDoubleValue(position);
    };
}

Show digits(NumberEditorLook look, bool isEdited, std::int32_t value,
            std::optional<Color> zeros = {}) {
    return [=](CardPicture& card) {
        auto& made = card.add<NumberDisplay>(at({120, 48}), look);
        DfNumberEditorControl& editor = made.editor();
        editor.setPlaceHolderStringOfEditorCellAtIndex("0000", 0);
        editor.setLeadingZerosOfEditorCellAtIndex(4, 0);
        editor.editorCellAtIndex(0)->setLeadingZerosColor(zeros);
        made.setCaptions({"BAR"});
        editor.setValue(value);
        if (isEdited) editor.startEditingForCell(editor.cellAtIndex(0));
    };
}

Show picker(KeyRange range, bool isEnabled = true) {
    return [=](CardPicture& card) {
        auto& made = card.add<DfOctavePickerView>(at(DfOctavePickerView::naturalSize(true)), true);
        made.setKeyRange(range);
        made.setEnabled(isEnabled);
    };
}

// From middle C on, white keys 50 points wide.
Show keys(std::int32_t pressed) {
    return [=](CardPicture& card) {
        auto& made = card.add<KeyboardView>(at({400, 100}));
        made.setKeyRange({35, 8});
        made.setNotePressed(pressed, true);
    };
}

Show peak(double decibels) {
    return [=](CardPicture& card) { card.add<PeakReadout>(at({56, 20})).setDecibels(decibels); };
}

Show meter(float left) {
    return [=](CardPicture& card) {
        auto& made = card.add<DfStereoLevelMeterView>(at({28, 180}));
        made.setLevelScale(LevelMeterLevels::Decibels);
        made.setLevelL(left, 0.0F);
    };
}

void scale(CardPicture& card) {
    auto& beside = card.add<DfStereoLevelMeterView>(at({28, 180}));
    beside.setFrameOrigin({60, 16});
    card.add<LevelMeterScaleView>(at({44, 190})).setMeter(&beside.cellL());
}

void tip(CardPicture& card) {
    struct Tip final : View {
        using View::View;
        bool isFlipped() const override { return true; }
        void drawRect(Canvas& canvas, const Rect&) override {
            ValueTip::placed("C1", {{20, 60}, {10, 10}}, bounds(), ToolTipSide::Above)
                .draw(canvas, "C1", effectiveAppearance());
        }
    };
    card.add<Tip>(at({80, 80}));
}

Show focused(const Show& show) {
    return [=](CardPicture& card) {
        show(card);
        card.window.keyboardArrives(true);
    };
}

TEST(Contrast, OfTextAndMarksIsHighEnoughOnEveryControl) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(nameOf(setting));
        const Theme& colors = theme(setting.appearance);
        const Rect onButton{{24, 20}, {48, 16}}, onDigits{{20, 34}, {112, 28}},
            onEdited{{56, 38}, {40, 20}};
        constexpr double kText = 4.5, kMark = 3.0;
        const struct {
            const char* what;
            Show show;
            Rect where;
            double least;
        } rows[] = {
            {"button", button({}, false), onButton, kText},
            {"button pressed", button({}, false, true), onButton, kText},
            {"button on", button({}, true), onButton, kText},
            {"button on, pressed", button({}, true, true), onButton, kText},
            {"mute", button(colors.mute, true), onButton, kText},
            {"mute pressed", button(colors.mute, true, true), onButton, kText},
            {"solo", button(colors.solo, true), onButton, kText},
            {"arm", button(colors.arm, true), onButton, kText},
            {"arm pressed", button(colors.arm, true, true), onButton, kText},
            {"focus ring", focused(button({}, false)), {{10, 20}, {5, 16}}, kMark},
            {"labels of a fader", fader(0.8), {{16, 16}, {18, 186}}, kText},
            {"marks of a fader", fader(0.8), {{41, 100}, {2, 90}}, kMark},
            {"reading line", fader(0.8), {{47, 44}, {12, 20}}, kMark},
            {"way of a fader", fader(0.2), {{51, 80}, {10, 20}}, kMark},
            {"reading line of pan", pan(0.5), {{70, 22}, {24, 16}}, kMark},
            {"digits on glass", digits(Glass, false, 8888), onDigits, kText},
            {"zeros on glass", digits(Glass, false, 0), onDigits, kText},
            {"digits edited", digits(Glass, true, 8888), onEdited, kText},
            {"zeros edited", digits(Glass, true, 0), onEdited, kText},
            {"zeros edited, coloured", digits(Glass, true, 0, colors.glassText), onEdited, kText},
            {"digits in a field", digits(Field, false, 8888), onDigits, kText},
            {"zeros in a field", digits(Field, false, 0), onDigits, kText},
            {"caption", digits(Glass, false, 0), {{40, 20}, {72, 12}}, kText},
            {"caption of a field", digits(Field, false, 0), {{40, 18}, {72, 12}}, kText},
            {"labels of a meter", scale, {{18, 60}, {28, 120}}, kText},
            {"marks of a meter", scale, {{51, 60}, {6, 120}}, kMark},
            {"names below the picker", picker({28, 15}), {{24, 44}, {100, 10}}, kText},
            {"name in its range", picker({28, 15}), {{192, 44}, {80, 10}}, kText},
            {"label of a key", keys(-1), {{24, 90}, {34, 14}}, kText},
            {"label of a played key", keys(60), {{24, 90}, {34, 14}}, kText},
            {"peak", peak(-12.0), {{20, 18}, {48, 16}}, kText},
            {"silence", peak(-90.0), {{20, 18}, {48, 16}}, kText},
            {"peak clipped", peak(1.0), {{20, 18}, {48, 16}}, kText},
            {"value tip", tip, {{34, 46}, {14, 14}}, kText},
        };
        for (const auto& row : rows) {
            const Pixels pixels = shown(setting, row.show);
            EXPECT_GE(contrastIn(pixels, row.where, setting.scale), row.least) << row.what;
        }
    }
}

TEST(Texts, AreNotCutOff) {
    const std::pair<const char*, Show> rows[] = {{"button", button({}, false)},
                                                 {"fader", fader(0.8)},
                                                 {"digits on glass", digits(Glass, false, 8888)},
                                                 {"digits in a field", digits(Field, true, 8888)},
                                                 {"meter", scale},
                                                 {"picker", picker({28, 15})},
                                                 {"keys", keys(60)},
                                                 {"peak", peak(-88.8)},
                                                 {"tip", tip}};
    for (const Setting& setting : settings()) {
        for (const auto& [what, show] : rows) {
            CardPicture picture({480, 220}, setting);
            show(picture);
            RecordingCanvas canvas(setting.scale);
            const Rect whole{{}, {480, 220}};
            picture.window.display(canvas, {&whole, 1});
            const auto texts = RecordingCanvas::only(RecordingCanvas::What::Text, canvas.calls);
            EXPECT_EQ(cutOff(texts), "") << what << ", " << nameOf(setting);
            EXPECT_FALSE(texts.empty()) << what;
        }
    }
}

TEST(Contrast, StatesCanBeToldApartByEveryKindOfEyes) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(nameOf(setting));
        const Theme& colors = theme(setting.appearance);
        constexpr Point kFace{22, 22};
        const struct {
            const char* what;
            Show one, other;
            Point place;
        } rows[] = {
            {"on", button({}, true), button({}, false), kFace},
            {"mute", button(colors.mute, true), button({}, false), kFace},
            {"solo", button(colors.solo, true), button({}, false), kFace},
            {"arm", button(colors.arm, true), button({}, false), kFace},
            {"focus", focused(button({}, false)), button({}, false), {48, 13}},
            {"way", fader(0.2), fader(0.8), {56, 90}},
            {"way of pan", pan(0.8), pan(0.0), {66, 30}},
            {"editing", digits(Glass, true, 8), digits(Glass, false, 8), {60, 48}},
            {"line of the range", picker({28, 15}), picker({5, 3}), {220, 19}},
            {"end of the range", picker({28, 15}), picker({5, 3}), {189, 36}},
            {"white key", keys(60), keys(-1), {30, 90}},
            {"black key", keys(61), keys(-1), {65, 60}},
            {"clipped", peak(1.0), peak(0.0), {20, 26}},
            {"light", meter(2.0F), meter(0.5F), {24, 24}},
            {"lit", meter(0.5F), meter(0.0F), {24, 190}},
        };
        for (const auto& row : rows) {
            const std::uint32_t one = shown(setting, row.one).rgbAt(row.place);
            const std::uint32_t other = shown(setting, row.other).rgbAt(row.place);
            for (const Sight sight : kSights)
                EXPECT_GE(distance(one, other, sight), 20.0)
                    << row.what << " " << static_cast<int>(sight);
        }
    }
}

}  // namespace
}  // namespace veltra::testing
