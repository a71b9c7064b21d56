// SPDX-License-Identifier: MIT
#include "top_bar.h"

#include "../text.h"
#include "../times.h"
#include "icons.h"
#include "veltra/controls/number_editor/number_groups.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kMargin = 16.0F;
constexpr float kRadius = 8.0F;
constexpr float kTall = 72.0F;  // with captions, tempo and time
constexpr float kCaptionTop = 4.0F;
constexpr float kCaptionHeight = 12.0F;
constexpr float kStatusWidth = 130.0F;
constexpr float kPadding = 10.0F;  // of the glass, beside what is on it
constexpr float kPart = 25.0F;     // with a line in the middle: between the parts of the glass
constexpr float kButtonHeight = 32.0F;
constexpr float kAddWidth = 112.0F;
constexpr float kLeastForMeter = 940.0F;  // width of the window
constexpr float kTimeFont = 22.0F;
constexpr float kSmallFont = 16.0F;
constexpr std::int32_t kTicksPerBeat = 960;  // as the window shows them
constexpr std::int32_t kTicksPerShown = CMusicalContext::kTicksPerBeat / kTicksPerBeat;

}  // namespace

// A value in groups of digits, kept between two limits.
class TopBar::Groups : public DfNumberEditorControlDelegate {
public:
    Groups(std::int64_t least, std::int64_t most) : m_least(least), m_most(most) {}

    virtual NumberGroups groups() const = 0;
    std::optional<std::vector<std::int32_t>> calculateCellValuesFromValue(
        DfNumberEditorControl& /*control*/, std::int64_t value) override {
        return groups().split(value);
    }
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl& /*control*/, std::span<const std::int32_t> values) override {
        return std::clamp(groups().join(values), m_least, m_most);
    }

private:
    const std::int64_t m_least;
    const std::int64_t m_most;
};

// Bars and beats from 1, and ticks.
class TopBar::Position final : public Groups {
public:
    Position() : Groups(0, INT64_MAX) {}
    NumberGroups groups() const override {
        return NumberGroups{{{0, 1}, {beatsPerBar, 1}, {kTicksPerBeat, 0}}};
    }
    std::int32_t beatsPerBar = 4;
};

// Hundredths of beats a minute.
class TopBar::Tempo final : public Groups {
public:
    Tempo() : Groups(2000, 99900) {}
    NumberGroups groups() const override { return NumberGroups{{{0, 0}, {100, 0}}}; }
};

// Beats a bar and the unit of a beat; the latter goes by powers of two, in the direction in which
// it is moved.
class TopBar::Meter final : public DfNumberEditorControlDelegate {
public:
    static constexpr std::int64_t valueOf(int beatsPerBar, int beatUnit) {
        return std::int64_t{beatsPerBar} * kUnits + beatUnit;
    }
    static int beatsPerBar(std::int64_t value) { return static_cast<int>(value / kUnits); }
    static int beatUnit(std::int64_t value) { return static_cast<int>(value % kUnits); }

    std::optional<std::vector<std::int32_t>> calculateCellValuesFromValue(
        DfNumberEditorControl& /*control*/, std::int64_t value) override {
        return std::vector<std::int32_t>{beatsPerBar(value), beatUnit(value)};
    }
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl& control, std::span<const std::int32_t> values) override {
        const int unit = std::clamp(values[1], 1, kMost);
        const auto bits = static_cast<unsigned>(unit);
        const bool isRaised = unit > beatUnit(control.value());
        const auto power = static_cast<int>(isRaised ? std::bit_ceil(bits) : std::bit_floor(bits));
        return valueOf(std::clamp(values[0], 1, kMost), power);
    }

private:
    static constexpr int kMost = 64;  // of either
    static constexpr std::int64_t kUnits = 1000;
};

TopBar::TopBar(ConsoleDelegate& delegate)
    : m_delegate(delegate),
      m_positionGroups(std::make_unique<Position>()),
      m_tempoGroups(std::make_unique<Tempo>()),
      m_meterGroups(std::make_unique<Meter>()),
      m_return(addSubview(std::make_unique<ConsoleButton>(Rect{}, ""))),
      m_play(addSubview(std::make_unique<ConsoleButton>(Rect{}, "", ButtonCell::Kind::Toggle))),
      m_loop(addSubview(std::make_unique<ConsoleButton>(Rect{}, "", ButtonCell::Kind::Toggle))),
      m_position(
          addSubview(std::make_unique<NumberDisplay>(Rect{}, NumberEditorLook::Glass, kTimeFont))),
      m_tempo(
          addSubview(std::make_unique<NumberDisplay>(Rect{}, NumberEditorLook::Glass, kTimeFont))),
      m_meter(
          addSubview(std::make_unique<NumberDisplay>(Rect{}, NumberEditorLook::Glass, kTimeFont))),
      m_tempoCaption(addSubview(std::make_unique<Label>(
          themeFont(10.0F, FontWeight::Medium), &Theme::glassCaption, TextAlignment::Center))),
      m_meterCaption(addSubview(std::make_unique<Label>(
          themeFont(10.0F, FontWeight::Medium), &Theme::glassCaption, TextAlignment::Center))),
      m_clips(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Clips: 0"))),
      m_keys(addSubview(std::make_unique<ConsoleButton>(Rect{}, "", ButtonCell::Kind::Toggle))),
      m_add(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Add files\u2026"))),
      m_status(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::label,
                                                  TextAlignment::Right, TextTruncation::End))),
      m_files(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption,
                                                 TextAlignment::Right, TextTruncation::End))) {
    const auto setUp = [this](ConsoleButton& button, ButtonCell::Icon icon, const char* name,
                              Action action, char16_t key, std::uint32_t modifiers) {
        button.setTarget(this);
        button.setAction(action);
        button.setFont(themeFont(12.0F, FontWeight::Medium));
        button.buttonCell().setIcon(icon);
        button.buttonCell().setAccessibilityName(name);
        button.setHelp(name, key, modifiers);
    };
    constexpr std::uint32_t kControl = kControlKeyMask;
    setUp(m_return, drawReturnIcon, "Return to start", action<&TopBar::returnWasPressed>(),
          kHomeCharacter, 0);
    setUp(m_play, drawPlayIcon, "Play", action<&TopBar::playWasPressed>(), u' ', 0);
    setUp(m_loop, drawLoopIcon, "Loop", action<&TopBar::loopWasPressed>(), u'l', 0);
    setUp(m_add, drawPlusIcon, "Add files", action<&TopBar::addWasPressed>(), u'o', kControl);
    setUp(m_keys, drawKeysIcon, "Keyboard", action<&TopBar::keysWasPressed>(), u'k', 0);
    m_clips.setFont(themeFont(12.0F, FontWeight::Medium));
    m_clips.buttonCell().setIcon(drawClipIcon);
    m_clips.setHelp("Reset all clip lights", u'c');
    for (ConsoleButton* const button : {&m_return, &m_play, &m_loop, &m_keys})
        button->buttonCell().setCornerRadius(kRadius);
    // Symbols of acts are as strong as titles; the loop is a state.
    m_play.buttonCell().setStyle(ButtonCell::Style::Plain);
    m_loop.buttonCell().setStyle(ButtonCell::Style::Mode);
    m_keys.buttonCell().setStyle(ButtonCell::Style::Mode);

    const auto setUpEditor = [this](NumberDisplay& display, const char* name,
                                    DfNumberEditorControlDelegate& groups, Action action) {
        DfNumberEditorControl& editor = display.editor();
        editor.setDelegate(&groups);
        editor.setAccessibilityName(name);
        editor.setSeparatorsLead(true);
        editor.setUsesClipboard(true);
        editor.setLocksPointer(true);
        editor.setTarget(this);
        editor.setAction(action);
    };
    setUpPositionGroups();
    setUpEditor(m_position, "position", *m_positionGroups,
                veltra::action<&TopBar::positionWasEdited>());
    m_tempo.setGroups({{3, "beats a minute"}, {2, "hundredths", true}});
    setUpEditor(m_tempo, "tempo", *m_tempoGroups, veltra::action<&TopBar::tempoWasEdited>());
    // Behind the point zeros count like any digit.
    m_tempo.editor().editorCellAtIndex(1)->setLeadingZerosColor(theme(Appearance::Dark).glassText);
    m_meter.setGroups({{2, "beats a bar"}, {2, "beat unit"}}, "/");
    setUpEditor(m_meter, "meter", *m_meterGroups, veltra::action<&TopBar::meterWasEdited>());
    m_meter.editor().setValue(Meter::valueOf(4, 4));
    m_meter.setCaptions({""});  // their height is kept free
    m_meterCaption.setText("meter");
    m_tempo.editor().setValue(12000);
    m_tempo.setCaptions({""});  // their height is kept free
    m_tempoCaption.setText("tempo");
    m_clips.setHidden(true);
    layOut();
}

// Bars of more than nine beats need another place.
void TopBar::setUpPositionGroups() {
    const std::uint32_t places = m_positionGroups->beatsPerBar > 9 ? 2 : 1;
    m_position.setGroups({{4, "bar", true}, {places, "beat"}, {4, "tick", true}});
    m_position.editor().editorCellAtIndex(2)->setMinimumDelta(10);
}

TopBar::~TopBar() {
    cutAnchor();
}

float TopBar::heightIn(Size window) {
    if (window.height < 360.0F) return 48.0F;
    return window.width < 800.0F || window.height < 520.0F ? 56.0F : kTall;
}

void TopBar::setClipsAction(Anchored* target, Action action) {
    m_clips.setTarget(target);
    m_clips.setAction(action);
}

void TopBar::layOut() {
    const bool isTall = bounds().size.height >= kTall;
    const float button = isTall ? 40.0F : 32.0F;
    const float top = isTall ? 16.0F : 6.0F;
    float x = kMargin;
    const auto next = [&](View& view, float width, float gap) {
        view.setFrame({{x, top}, {width, button}});
        x += width + gap;
    };
    next(m_return, button, 4.0F);
    next(m_play, isTall ? button + 16.0F : button + 4.0F, 4.0F);
    next(m_loop, button, isTall ? 16.0F : 8.0F);

    // The glass: one plate for all three; position and tempo lie on it.
    const float height = isTall ? 52.0F : 36.0F;
    const float font = isTall ? kTimeFont : kSmallFont;
    for (NumberDisplay* const display : {&m_position, &m_tempo, &m_meter})
        display->editor().setLook(NumberEditorLook::Glass, font);
    m_position.setCaptions(isTall ? std::vector<std::string>{"bar", "beat", "tick"}
                                  : std::vector<std::string>{});
    m_glass = {{x, isTall ? 10.0F : 4.0F}, {0.0F, height}};
    float right = x + kPadding;
    const auto lay = [&](NumberDisplay& display) {
        const float width = std::ceil(display.sizeThatFits().width);
        display.setFrame({{right, m_glass.minY()}, {width, height}});
        display.layOut();
        right += width;
    };
    lay(m_position);
    // Narrow windows have the meter in their menu.
    const bool hasMeter = isTall && bounds().size.width >= kLeastForMeter;
    const auto layWithCaption = [&](NumberDisplay& display, Label& caption, bool isShown) {
        display.setHidden(!isShown);
        caption.setHidden(!isShown);
        if (!isShown) return;
        right += kPart;
        lay(display);
        caption.setFrame({{display.frame().minX(), m_glass.minY() + kCaptionTop},
                          {display.frame().size.width, kCaptionHeight}});
    };
    layWithCaption(m_tempo, m_tempoCaption, isTall);
    layWithCaption(m_meter, m_meterCaption, hasMeter);
    m_timeRect = {};
    if (isTall) {
        right += kPart;
        const StyledText widest{"00:00.0", themeFont(font, FontWeight::Medium), {}};
        m_timeRect = {{right, m_glass.minY()}, {std::ceil(widest.size().width) + 4.0F, height}};
        right = m_timeRect.maxX();
    }
    m_glass.size.width = right + kPadding - m_glass.minX();

    const float edge = bounds().size.width - kMargin;
    const float addWidth = isTall ? kAddWidth : kButtonHeight;
    const float addTop = isTall ? 20.0F : top;
    m_add.setStringValue(isTall ? "Add files\u2026" : "");
    m_add.buttonCell().setCornerRadius(isTall ? 6.0F : kRadius);
    m_add.buttonCell().setStyle(m_isPrimary ? ButtonCell::Style::Primary
                                            : ButtonCell::Style::Plain);
    m_add.setFrame({{edge - addWidth, addTop}, {addWidth, kButtonHeight}});
    x = edge - addWidth - 8.0F;
    m_keys.setFrame({{x - kButtonHeight, addTop}, {kButtonHeight, kButtonHeight}});
    m_keys.setHidden(x - kButtonHeight < m_glass.maxX() + 8.0F);
    x -= m_keys.isHidden() ? 0.0F : kButtonHeight + (isTall ? 16.0F : 8.0F);
    if (!m_clips.isHidden()) {
        m_clips.sizeToFit();
        const float width = std::ceil(m_clips.frame().size.width);
        m_clips.setFrame({{x - width, addTop}, {width, kButtonHeight}});
        m_clips.setHidden(x - width < m_glass.maxX() + 8.0F);
        x -= width + 16.0F;
    }
    const float room = x - m_glass.maxX() - 16.0F;
    const bool hasStatus = isTall && room >= kStatusWidth;
    const float width = std::min(room, 260.0F);
    for (Label* const label : {&m_status, &m_files})
        label->setHidden(!hasStatus);
    m_status.setFrame({{x - width, 20.0F}, {width, 16.0F}});
    m_files.setFrame({{x - width, 36.0F}, {width, 16.0F}});
    setNeedsDisplay();
}

void TopBar::update(const ConsoleState& state, int clips) {
    m_play.setOn(state.playing);
    m_play.buttonCell().setIcon(state.playing ? drawStopIcon : drawPlayIcon);
    m_loop.setOn(state.looping);
    const BarBeatTick& place = state.place;
    if (m_positionGroups->beatsPerBar != state.beatsPerBar) {
        m_positionGroups->beatsPerBar = std::max(state.beatsPerBar, 1);
        setUpPositionGroups();
        layOut();
        m_position.editor().calculateCellValuesFromValue();
    }
    const std::int64_t beats = (place.bar - 1) * m_positionGroups->beatsPerBar + place.beat - 1;
    const std::int64_t ticks = beats * kTicksPerBeat + place.tick / kTicksPerShown;
    // What the user types stays until it is committed.
    DfNumberEditorControl& position = m_position.editor();
    if (position.editingCell() == nullptr && position.value() != ticks) position.setValue(ticks);
    DfNumberEditorControl& tempo = m_tempo.editor();
    const auto hundredths = static_cast<std::int64_t>(std::lround(state.tempo * 100.0));
    if (tempo.editingCell() == nullptr && tempo.value() != hundredths) tempo.setValue(hundredths);
    DfNumberEditorControl& meter = m_meter.editor();
    const std::int64_t present = Meter::valueOf(state.beatsPerBar, state.beatUnit);
    if (meter.editingCell() == nullptr && meter.value() != present) meter.setValue(present);
    m_secondsPerTick = 60.0 / std::max(state.tempo, 1.0) / kTicksPerBeat;
    const std::string time = preciseTime(state.seconds);
    if (time != m_time) {
        m_time = time;
        setNeedsDisplayInRect(m_timeRect);
    }
    updateStatus(state, clips);
}

void TopBar::updateStatus(const ConsoleState& state, int clips) {
    std::size_t channels = 0;
    for (const StripState& strip : state.strips)
        channels += static_cast<std::size_t>(strip.format.channels);
    const std::size_t files = state.strips.size();
    m_files.setText(files == 0 ? "No files"
                               : formatted("%zu %s, %zu %s", files, files == 1 ? "file" : "files",
                                           channels, channels == 1 ? "channel" : "channels"));
    std::string status;
    if (state.rate > 0) {
        status = decimalText(state.rate / 1000.0, state.rate % 1000 == 0 ? 0 : 1) + " kHz";
        if (state.blockFrames > 0)
            status += ", " + decimalText(1000.0 * state.blockFrames / state.rate, 1) + " ms";
    }
    if (state.deviceUnderruns > 0)
        status += formatted(", %llu gaps", static_cast<unsigned long long>(state.deviceUnderruns));
    m_status.setText(status);
    const std::string text = formatted("Clips: %d", clips);
    const bool isPrimary = files == 0;
    if (m_clips.stringValue() == text && m_isPrimary == isPrimary) return;
    m_clips.setStringValue(text);
    m_clips.setHidden(clips == 0);
    m_isPrimary = isPrimary;
    layOut();
}

void TopBar::drawRect(Canvas& canvas, const Rect& dirty) {
    const Theme& colors = theme(effectiveAppearance());
    canvas.fillRect(dirty, colors.window);
    fillRounded(canvas, m_glass, kRadius, colors.glass);
    if (m_timeRect.isEmpty()) return;
    const float line = 12.0F;  // from the ends of the glass
    for (const View* const part : {&m_position, &m_tempo}) {
        fillAligned(canvas,
                    {{std::round(part->frame().maxX() + kPart * 0.5F), m_glass.minY() + line},
                     {1.0F, m_glass.size.height - 2.0F * line}},
                    colors.glass.mixedWith(kWhite, 0.17F));
    }
    const auto caption = [&](const char* text, const Rect& part) {
        canvas.drawText(
            {text, themeFont(10.0F, FontWeight::Medium), colors.glassCaption,
             TextAlignment::Center},
            {{part.minX(), m_glass.minY() + kCaptionTop}, {part.size.width, kCaptionHeight}},
            TextPlacement::Capitals);
    };
    caption("time", m_timeRect);
    const Rect digits{{m_timeRect.minX(), m_glass.minY() + kCaptionHeight},
                      {m_timeRect.size.width, m_glass.size.height - kCaptionHeight}};
    canvas.drawText({m_time, themeFont(kTimeFont, FontWeight::Medium), colors.glassCaption,
                     TextAlignment::Right},
                    digits, TextPlacement::Capitals);
}

bool TopBar::takeKeyboard() {
    return window() != nullptr && window()->giveKeyboardTo(m_return);
}

std::string TopBar::accessibilityValueText() const {
    return m_position.editor().valueText() + ", " + m_time;
}

void TopBar::returnWasPressed() {
    m_delegate.placeWasChosen(0.0);
}

void TopBar::playWasPressed() {
    m_delegate.playWasSwitched(m_play.isOn());
}

void TopBar::loopWasPressed() {
    m_delegate.loopWasSwitched(m_loop.isOn());
}

void TopBar::keysWasPressed() {
    m_delegate.keyboardWasSwitched(m_keys.isOn());
}

void TopBar::addWasPressed() {
    m_delegate.addFilesWasPressed();
}

void TopBar::positionWasEdited() {
    m_delegate.placeWasChosen(static_cast<double>(m_position.editor().value()) * m_secondsPerTick);
}

void TopBar::meterWasEdited() {
    const std::int64_t value = m_meter.editor().value();
    m_delegate.meterWasSet(Meter::beatsPerBar(value), Meter::beatUnit(value));
}

void TopBar::tempoWasEdited() {
    m_delegate.tempoWasSet(static_cast<double>(m_tempo.editor().value()) / 100.0);
}

}  // namespace veltra::console
