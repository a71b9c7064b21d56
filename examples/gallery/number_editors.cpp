// SPDX-License-Identifier: MIT
#include "sheets.h"
#include "user.h"
#include "veltra/controls/number_editor/number_display.h"
#include "veltra/controls/number_editor/number_groups.h"
#include "veltra/ui/theme.h"

#include <algorithm>
#include <memory>

namespace veltra::gallery {

namespace {

// A value in groups, kept between two limits.
class Groups : public DfNumberEditorControlDelegate {
public:
    Groups(const NumberGroups& groups, std::int64_t least, std::int64_t most)
        : m_groups(groups), m_least(least), m_most(most) {}

    std::optional<std::vector<std::int32_t>> calculateCellValuesFromValue(
        DfNumberEditorControl& /*control*/, std::int64_t value) override {
        return m_groups.split(value);
    }
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl& /*control*/, std::span<const std::int32_t> values) override {
        return std::clamp(m_groups.join(values), m_least, m_most);
    }

private:
    const NumberGroups m_groups;
    const std::int64_t m_least;
    const std::int64_t m_most;
};

// Bars, beats and ticks, counted from the beginning of the first bar.
struct Position final : Groups {
    Position() : Groups(NumberGroups{{{0, 1}, {4, 1}, {960, 0}}}, 0, INT64_MAX) {}
};

// Hundredths of beats a minute, from 20 to 999.
struct Tempo final : Groups {
    Tempo() : Groups(NumberGroups{{{0, 0}, {100, 0}}}, 2000, 99900) {}
};

std::unique_ptr<NumberDisplay> makePosition() {
    static Position delegate;
    auto made = std::make_unique<NumberDisplay>(Rect{{}, {164.0F, 40.0F}});
    made->setGroups({{4, "bar", true}, {1, "beat"}, {4, "tick", true}});
    DfNumberEditorControl& editor = made->editor();
    editor.setDelegate(&delegate);
    editor.setAccessibilityName("position");
    editor.setSeparatorsLead(true);
    editor.setUsesClipboard(true);
    editor.setValue(3 * 3840 + 2 * 960 + 456);
    return made;
}

std::unique_ptr<NumberDisplay> makeTempo() {
    static Tempo delegate;
    auto made = std::make_unique<NumberDisplay>(Rect{{}, {100.0F, 40.0F}});
    made->setGroups({{3, "beats a minute"}, {2, "hundredths", true}});
    made->editor().setDelegate(&delegate);
    // Behind the point zeros count like any digit.
    made->editor().editorCellAtIndex(1)->setLeadingZerosColor(theme(Appearance::Dark).glassText);
    made->editor().setAccessibilityName("tempo");
    made->editor().setValue(12000);
    return made;
}

std::unique_ptr<NumberDisplay> makeVelocity(NumberEditorLook look) {
    auto made = std::make_unique<NumberDisplay>(Rect{{}, {56.0F, 20.0F}}, look, 11.0F);
    made->editor().setAlignment(TextAlignment::Center);
    made->editor().setAccessibilityName("velocity");
    made->editor().setValue(100);
    made->layOut();
    return made;
}

// The digits of old equipment, in colours of the host's own.
std::unique_ptr<DfNumberEditorControl> makeSegments() {
    constexpr Color kGreen = Color::fromRgb(0x3DE06B);
    auto made = std::make_unique<DfNumberEditorControl>(Rect{{}, {64.0F, 24.0F}});
    made->setFont(themeFont(18.0F, FontWeight::Medium));
    made->setPlaceHolderStringOfEditorCellAtIndex("8888", 0);
    made->setShadowEightsOfEditorCellAtIndex(4, 0);
    made->editorCellAtIndex(0)->setHorizontalTextInsets(5.0F);
    made->recalculateFontSize();
    made->QkCellGroupControl::setDrawsBackground(true);
    made->setBackgroundColor(Color::fromRgb(0x0E140E));
    made->setTextColor(kGreen);
    made->setShadowEightColor(kGreen.withAlpha(0.15F));
    made->setEditTextColor(Color::fromRgb(0x082811));
    made->setEditBackgroundColor(kGreen);
    made->setAccessibilityName("segments");
    made->setValue(128);
    return made;
}

template <typename Make>
Specimen specimen(std::string caption, Size size, Make make,
                  const std::function<void(NumberDisplay&)>& set = {},
                  std::function<void(Window&)> drive = {}) {
    return {std::move(caption), size,
            [=] {
                auto made = make();
                if (set) set(*made);
                return made;
            },
            std::move(drive)};
}

void startEditing(Window& window, Point point) {
    press(window, point);
    release(window, point);
    press(window, point, 2);
    release(window, point);
}

}  // namespace

Sheet numberEditorSheet() {
    const Size size{164.0F, 40.0F};
    const Point firstGroup{36.0F, 28.0F};
    const Point lastGroup{148.0F, 28.0F};
    const auto position = [&](std::string caption, std::function<void(Window&)> drive,
                              const std::function<void(NumberDisplay&)>& set = {}) {
        return specimen(std::move(caption), size, makePosition, set, std::move(drive));
    };
    const auto disabled = [](NumberDisplay& made) { made.editor().setEnabled(false); };
    const auto withCaptions = [](NumberDisplay& made) {
        made.setCaptions({"BAR", "BEAT", "TICK"});
    };
    const auto glass = [] { return makeVelocity(NumberEditorLook::Glass); };
    const auto field = [] { return makeVelocity(NumberEditorLook::Field); };
    const Size small{56.0F, 20.0F};
    const Size segments{64.0F, 24.0F};
    const auto withZeros = [](TextAlignment alignment, std::int64_t value) {
        return [=](NumberDisplay& made) {
            QkNumberEditorCell& cell = *made.editor().editorCellAtIndex(0);
            made.editor().setAlignment(alignment);
            cell.setLeadingZeros(4);
            cell.setLeadingZerosColor(theme(Appearance::Dark).accent);
            made.editor().setValue(value);
        };
    };
    const std::u16string emptied{u'1', kDeleteCharacter};
    const auto editFirst = [=](Window& window) { startEditing(window, firstGroup); };
    const auto editSmall = [](Window& window) { startEditing(window, {36.0F, 18.0F}); };
    const auto typeDigits = [](const std::u16string& digits, Point point) {
        return [=](Window& window) {
            startEditing(window, point);
            type(window, digits);
        };
    };
    return {"number-editor",
            "Number editor",
            {{position("at rest", {}),
              position("hover", [=](Window& window) { hover(window, lastGroup); }),
              position("dragging",
                       [=](Window& window) {
                           press(window, lastGroup);
                           drag(window, {lastGroup.x, lastGroup.y + 44.0F});
                       })},
             {position("editing", editFirst), position("typed", typeDigits(u"012", firstGroup)),
              position("focused", focus)},
             {position("disabled: nothing but the glass", {}, disabled),
              specimen("with captions", {164.0F, 52.0F}, makePosition, withCaptions),
              specimen("tempo", {100.0F, 40.0F}, makeTempo)},
             {specimen("field", small, field),
              specimen("hover", small, field, {},
                       [](Window& window) {
                           hover(window, {36.0F, 18.0F});
                       }),
              specimen("editing", small, field, {}, editSmall),
              specimen("typed", small, field, {}, typeDigits(u"64", {36.0F, 18.0F})),
              specimen("emptied", small, field, {}, typeDigits(emptied, {36.0F, 18.0F})),
              specimen("focused", small, field, {}, focus),
              specimen("disabled", small, field, disabled), specimen("glass", small, glass)},
             {Specimen{"colours of your own", segments, makeSegments, {}},
              Specimen{"editing", segments, makeSegments, editSmall},
              specimen("coloured zeros", small, field, withZeros(TextAlignment::Right, 100)),
              specimen("at the left", small, field, withZeros(TextAlignment::Left, 100)),
              specimen("zero", small, field, withZeros(TextAlignment::Right, 0)),
              specimen("not smoothed", small, field, [](NumberDisplay& made) {
                  made.editor().setDisablesFontSmoothing(true);
              })}}};
}

}  // namespace veltra::gallery
