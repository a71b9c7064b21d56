// SPDX-License-Identifier: MIT
#include "strip_view.h"

#include "../text.h"
#include "../times.h"
#include "console_readout.h"
#include "icons.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>

namespace veltra::console {

namespace {

constexpr float kRadius = 10.0F;
constexpr float kBesideName = 20.0F;  // for the dot or the menu
constexpr float kNoteWidth = 28.0F;
constexpr float kHandleHeight = 46.0F;

std::string shortFormat(const FileFormat& format) {
    const bool isWhole = format.rate % 1000 == 0;
    return decimalText(format.rate / 1000.0, isWhole ? 0 : 1) + " kHz, " +
           format.plan.name(format.channels);
}

std::string longFormat(const FileFormat& format) {
    const std::string order = format.plan.orderName();
    return format.container + ", " + format.encoding + (order.empty() ? "" : ", " + order);
}

std::string baseName(const StripState& state) {
    return printable(std::filesystem::path(state.path).filename().string());
}

// The channels that come to the outputs, or those that are left out, each behind a space.
std::string channelNames(const FileFormat& format, bool areLeftOut) {
    std::string names;
    const auto channels = static_cast<std::size_t>(format.channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (isLeftOut(format.plan, channel, channels) == areLeftOut)
            names += ' ' + format.plan.channelName(channel);
    }
    return names;
}

std::string foldText(const FileFormat& format) {
    if (format.plan.order.empty()) return "Folded to stereo: odd channels left, even ones right";
    const std::string leftOut = channelNames(format, true);
    return "Folded to stereo by its channels:" + channelNames(format, false) +
           (leftOut.empty() ? "" : "; not heard:" + leftOut);
}

}  // namespace

float StripView::leastWidth(const FileFormat& format, CardKind kind) {
    const int bars = MeterGroup::bars(format.channels);
    if (kind == CardKind::Mini) return std::max(96.0F, CardLayout::widthFor(bars, false));
    if (kind == CardKind::Low) return std::max(116.0F, CardLayout::widthFor(bars, true));
    return format.channels > 2 ? 208.0F : 140.0F;
}

float StripView::mostWidth(const FileFormat& format) {
    return format.channels > 2 ? 280.0F : 212.0F;
}

StripView::StripView(const StripState& state, ConsoleDelegate& delegate)
    : m_key(state.key),
      m_format(state.format),
      m_delegate(delegate),
      m_name(addSubview(
          std::make_unique<Label>(themeFont(13.0F, FontWeight::SemiBold), &Theme::text))),
      m_formatText(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption))),
      m_menu(addSubview(std::make_unique<ConsoleButton>(Rect{}, ""))),
      m_waveform(addSubview(std::make_unique<WaveformView>(delegate, baseName(state)))),
      m_mute(addSubview(std::make_unique<ConsoleButton>(Rect{}, "M", ButtonCell::Kind::Toggle))),
      m_solo(addSubview(std::make_unique<ConsoleButton>(Rect{}, "S", ButtonCell::Kind::Toggle))),
      m_pan(addSubview(std::make_unique<StripSlider>(StripSlider::Kind::Pan))),
      m_panText(addSubview(
          std::make_unique<Label>(themeFont(11.0F), hasPan() ? &Theme::label : &Theme::caption,
                                  hasPan() ? TextAlignment::Right : TextAlignment::Left))),
      m_gain(addSubview(std::make_unique<GainField>())),
      m_fader(addSubview(std::make_unique<StripSlider>(StripSlider::Kind::Fader))),
      m_readout(addSubview(std::make_unique<ConsoleReadout>())),
      m_scale(addSubview(std::make_unique<LevelMeterScaleView>())),
      m_meters(addSubview(std::make_unique<MeterGroup>(state.format.channels, state.format.plan))),
      m_time(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption))),
      m_note(addSubview(std::make_unique<Label>(themeFont(11.0F, FontWeight::Medium), &Theme::label,
                                                TextAlignment::Right))) {
    const std::string name = baseName(state);
    m_name.setText(printable(std::filesystem::path(state.path).stem().string()));
    m_name.setFullText(printable(state.path));
    m_formatText.setText(shortFormat(m_format));
    m_formatText.setFullText(longFormat(m_format));
    m_meters.setName(name);
    m_scale.setMeter(&m_meters.firstCell());
    m_menu.buttonCell().setStyle(ButtonCell::Style::Bare);
    m_menu.buttonCell().setAccessibilityName("Menu of " + name);
    const auto setUp = [&](ConsoleButton& button, const char* what, char16_t key, Color color) {
        button.setFont(themeFont(11.0F, FontWeight::SemiBold));
        button.buttonCell().setOnColor(color);
        button.buttonCell().setAccessibilityName(std::string(what) + ' ' + name);
        button.setHelp(what, key);
    };
    setUp(m_mute, "Mute", u'm', theme(Appearance::Dark).mute);
    setUp(m_solo, "Solo", u's', theme(Appearance::Dark).solo);
    m_pan.sliderCell().setAccessibilityName("pan of " + name);
    m_fader.sliderCell().setAccessibilityName("fader of " + name);
    m_gain.setAccessibilityName("gain of " + name);
    m_readout.setAccessibilityName("peak of " + name);
    if (!hasPan()) {
        m_pan.setHidden(true);
        const std::string leftOut = channelNames(m_format, true);
        m_panText.setText("Folded to stereo" + (leftOut.empty() ? "" : ", no" + leftOut));
        m_panText.setFullText(foldText(m_format));
        m_formatText.setFullText(longFormat(m_format) + ". " + foldText(m_format));
    }
    m_noteFormatter.setNoteStyle(QKMIDIFormatter::kNoteName);

    const auto connect = [this](Control& control, Action action) {
        control.setTarget(this);
        control.setAction(action);
    };
    connect(m_menu, action<&StripView::menuWasPressed>());
    connect(m_mute, action<&StripView::muteWasPressed>());
    connect(m_solo, action<&StripView::soloWasPressed>());
    connect(m_pan, action<&StripView::panWasMoved>());
    connect(m_gain, action<&StripView::gainWasTyped>());
    connect(m_fader, action<&StripView::faderWasMoved>());
    connect(m_readout, action<&StripView::clipsWereCleared>());
    connect(m_meters, action<&StripView::clipsWereCleared>());
    showMenuButton();
}

std::string StripView::accessibilityName() const {
    return m_name.text() + (hasClipped() ? ", clipped" : "");
}

bool StripView::isHandle(Point point) const {
    return mouseInRect(point, {{}, {bounds().size.width, kHandleHeight}}, true);
}

void StripView::frameDidChange() {
    m_layout = CardLayout::make(bounds().size, MeterGroup::bars(m_format.channels));
    const auto place = [](View& view, const Rect& rect) {
        view.setHidden(rect.isEmpty());
        view.setFrame(rect);
    };
    Rect name = m_layout.name;
    name.size.width -= kBesideName;
    m_name.setFrame(name);
    m_menu.setFrame(m_layout.more);
    place(m_formatText, m_layout.format);
    place(m_waveform, m_layout.picture);
    m_waveform.setHasAxis(m_layout.kind == CardKind::Full);
    m_mute.setFrame(m_layout.switches[0]);
    m_solo.setFrame(m_layout.switches[1]);
    place(m_pan, hasPan() ? m_layout.pan : Rect{});
    const Rect text = m_layout.panText;
    place(m_panText, hasPan() || text.isEmpty()
                         ? text
                         : Rect{{m_layout.name.minX(), text.minY()},
                                {m_layout.name.size.width, text.size.height}});
    place(m_gain, m_layout.gain);
    m_readout.setFrame(m_layout.peak);
    place(m_fader, m_layout.fader);
    m_fader.setHasScale(m_layout.isTall());
    m_scale.setFrame(m_layout.scale);
    m_meters.setFrame(m_layout.meter);
    m_meters.setBars(m_layout.bar, m_layout.barGap);
    Rect footer = m_layout.footer;
    footer.size.width = std::max(footer.size.width - kNoteWidth, 0.0F);
    place(m_time, footer);
    place(m_note, footer.isEmpty()
                      ? Rect{}
                      : Rect{{footer.maxX(), footer.minY()}, {kNoteWidth, footer.size.height}});
    setNeedsDisplay();
}

void StripView::update(const StripState& state, const ConsoleState& console) {
    const StripMeter& meter = state.meter;
    const bool isQuiet = !state.heard || state.muted;
    m_meters.setPeaks(meter.peaks);
    m_meters.setSquares(state.squares);
    m_meters.setMuted(isQuiet);
    m_readout.raise(meter.peak);
    m_readout.setMuted(isQuiet);
    m_mute.setOn(state.muted);
    m_solo.setOn(state.soloed);
    m_fader.setLevel(state.gainDecibels);
    if (!m_gain.isEditing()) m_gain.setDecibels(state.gainDecibels);
    m_pan.setLevel(state.pan);
    updateTexts(state);

    const double rate = std::max(state.format.rate, 1);
    const double length = static_cast<double>(meter.framesTotal) / rate;
    const double perFrame = console.looping && console.rate > 0 ? 1.0 / console.rate : 0.0;
    m_waveform.setOverview(state.overview);
    const std::string name = baseName(state);
    const auto reading = std::find_if(console.reading.begin(), console.reading.end(),
                                      [&](const ProgressLine& line) { return line.title == name; });
    const bool isRead = state.overview != nullptr && state.overview->isComplete;
    m_waveform.setReading(
        reading != console.reading.end() && !isRead ? std::optional(reading->value) : std::nullopt);
    m_waveform.setTimes(length, static_cast<double>(meter.framesPlayed) / rate,
                        static_cast<double>(console.loopBegin) * perFrame,
                        static_cast<double>(console.loopEnd) * perFrame);
    m_waveform.setMuted(isQuiet);
    if (hasClipped() != m_showsClip) {
        m_showsClip = !m_showsClip;
        setNeedsDisplayInRect({{}, {bounds().size.width, kHandleHeight}});
        postAccessibilityNotification(AccessibilityNotification::NameChanged);
        showMenuButton();
    }
}

void StripView::updateTexts(const StripState& state) {
    const StripMeter& meter = state.meter;
    const double rate = std::max(state.format.rate, 1);
    m_name.setColor(state.muted ? &Theme::caption : &Theme::text);
    if (hasPan()) {
        m_panText.setText(veltra::panText(state.pan));
        m_panText.setColor(state.pan == 0.0 ? &Theme::label : &Theme::text);
    }
    std::string time = clockTime(static_cast<double>(meter.framesPlayed) / rate);
    if (meter.framesTotal > 0)
        time += " / " + clockTime(static_cast<double>(meter.framesTotal) / rate);
    if (meter.underruns > 0) {
        time += " !";
        m_time.setFullText("The disk was too slow " + std::to_string(meter.underruns) + " times");
    }
    m_time.setText(state.ended ? "Ended" : time);
    m_note.setText(noteAt(state));
}

void StripView::setMeterKind(MeterKind kind) {
    m_meters.setKind(kind);
    m_readout.setAccessibilityUnit(unitOfPeaks(kind));
}

void StripView::clearClips() {
    m_meters.clearClips();
    m_readout.reset();
}

void StripView::setHovered(bool isHovered) {
    if (isHovered == m_isHovered) return;
    m_isHovered = isHovered;
    showMenuButton();
}

// Only where the pointer or the keyboard is: the clip light has the same place.
void StripView::showMenuButton() {
    m_menu.setIcons(m_showsClip ? drawClipIcon : nullptr, drawMoreIcon);
    m_menu.setInUse(m_isHovered);
}

void StripView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    const bool isFocused = focusedPart() >= 0 && window()->keysLead();
    drawPlate(canvas, bounds(), kRadius, colors.card, isFocused ? colors.strong : colors.line);
}

// The pitch of the onset that was last when the file played up to here.
std::string StripView::noteAt(const StripState& state) const {
    if (state.overview == nullptr || state.ended) return {};
    const CTransients& onsets = state.overview->onsets;
    const auto played = static_cast<std::int64_t>(state.meter.framesPlayed);
    const auto next = std::upper_bound(
        onsets.begin(), onsets.end(), played,
        [](std::int64_t place, const CTransient& each) { return place < each.pos; });
    if (next == onsets.begin() || !(std::prev(next)->FreqHz > 0.0F)) return {};
    const double hertz = static_cast<double>(std::prev(next)->FreqHz);
    const auto note =
        static_cast<std::int32_t>(std::lround(69.0 + 12.0 * std::log2(hertz / 440.0)));
    return m_noteFormatter.stringForObjectValue(note);
}

// Keys.

int StripView::focusedPart() const {
    int part = 0;
    for (const auto& view : subviews()) {
        if (view->isFirstResponder()) return part;
        ++part;
    }
    return -1;
}

bool StripView::focusPart(int part) {
    if (part < 0 || static_cast<std::size_t>(part) >= subviews().size() || window() == nullptr)
        return false;
    View& view = *subviews()[static_cast<std::size_t>(part)];
    // What is missing here has a neighbour.
    if (view.isHidden() || !view.acceptsFirstResponder()) return window()->giveKeyboardTo(m_mute);
    return window()->giveKeyboardTo(view);
}

void StripView::keyDown(const Event& event) {
    if (event.isRepeat) return View::keyDown(event);  // what is held acts once
    switch (event.plainKey()) {
        case u'm':
        case u'M':
            return m_mute.performClick();
        case u's':
        case u'S':
            return m_solo.performClick();
        case kForwardDeleteCharacter:
            return m_delegate.removeStripWasPressed(m_key);
        default:
            View::keyDown(event);
    }
}

// Actions.

void StripView::menuWasPressed() {
    m_delegate.stripMenuWasPressed(m_key, m_menu);
}

void StripView::muteWasPressed() {
    m_delegate.muteWasSwitched(m_key, m_mute.isOn());
}

void StripView::soloWasPressed() {
    m_delegate.soloWasSwitched(m_key, m_solo.isOn());
}

void StripView::panWasMoved() {
    m_delegate.panWasSet(m_key, m_pan.level());
}

void StripView::gainWasTyped() {
    m_delegate.gainWasSet(m_key, m_gain.decibels());
}

void StripView::faderWasMoved() {
    m_delegate.gainWasSet(m_key, m_fader.level());
}

void StripView::clipsWereCleared() {
    clearClips();
}

}  // namespace veltra::console
