// SPDX-License-Identifier: MIT
#include "strip_view.h"

#include "../text.h"
#include "veltra/audio/key_code_converter.h"
#include "veltra/ui/canvas.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>

namespace veltra::console {

namespace {

constexpr float kMargin = 10.0F;
constexpr float kSpeakersHeight = 100.0F;
constexpr float kNoteWidth = 32.0F;

std::string timeText(std::uint64_t frames, int rate) {
    const auto seconds = static_cast<unsigned long long>(frames) / static_cast<unsigned>(rate);
    return formatted("%llu:%02llu", seconds / 60, seconds % 60);
}

std::string formatText(const FileFormat& format) {
    return formatted("%g kHz, ", format.rate / 1000.0) + format.plan.name(format.channels);
}

// In a tool tip, with the key that does the same.
void tellShortcut(Button& button, const char* what, char16_t key) {
    const auto name = QKKeyCodeConverter::humandReadableStringForKeyChar(key, 0);
    button.toolTips().addToolTipRect({{}, {200.0F, 100.0F}},
                                     formatted("%s (%s)", what, name.value_or("").c_str()));
}

}  // namespace

StripView::StripView(const Rect& frame, const StripState& state, ConsoleDelegate& delegate)
    : View(frame),
      m_key(state.key),
      m_delegate(delegate),
      m_name(addSubview(std::make_unique<Label>(Rect{}, Font::systemFont(13.0F, FontWeight::Bold),
                                                SystemColor::Label))),
      m_format(addSubview(
          std::make_unique<Label>(Rect{}, Font::systemFont(11.0F), SystemColor::SecondaryLabel))),
      m_speakers(state.format.plan.order.size() > 2
                     ? &addSubview(std::make_unique<SpeakerCircle>(Rect{}, state.format.plan))
                     : nullptr),
      m_meters(addSubview(
          std::make_unique<MeterBridge>(Rect{}, state.format.channels, state.format.plan))),
      m_time(addSubview(std::make_unique<Label>(Rect{}, Font{{}, 11.0F, FontWeight::Regular, true},
                                                SystemColor::SecondaryLabel))),
      m_note(addSubview(std::make_unique<Label>(Rect{}, Font::systemFont(11.0F), SystemColor::Label,
                                                TextAlignment::Right))),
      m_waveform(addSubview(std::make_unique<WaveformView>(Rect{}))),
      m_mute(addSubview(std::make_unique<Button>(Rect{}, "Mute", ButtonCell::Kind::Toggle))),
      m_again(addSubview(std::make_unique<Button>(Rect{}, "Again"))),
      m_remove(addSubview(std::make_unique<Button>(Rect{}, "\u00D7"))) {
    const std::string name = printable(std::filesystem::path(state.path).filename().string());
    m_name.setText(printable(std::filesystem::path(state.path).stem().string()));
    m_name.setFullText(printable(state.path));
    m_format.setText(formatText(state.format));
    const std::string order = state.format.plan.orderName();
    m_format.setFullText(state.format.container + ", " + state.format.encoding +
                         (order.empty() ? "" : ", " + order));
    m_meters.setName(name);
    for (Button* const button : {&m_mute, &m_again, &m_remove})
        button->setTarget(this);
    m_mute.setAction(action<&StripView::muteWasPressed>());
    m_mute.buttonCell().setOnColor(Color::fromRgb(0xE8A33D));
    m_mute.buttonCell().setAccessibilityName("Mute " + name);
    m_again.setAction(action<&StripView::againWasPressed>());
    m_again.buttonCell().setAccessibilityName("Play " + name + " again");
    m_remove.setAction(action<&StripView::removeWasPressed>());
    m_remove.buttonCell().setAccessibilityName("Remove " + name);
    tellShortcut(m_mute, "Mute", u'm');
    tellShortcut(m_again, "Play again", u' ');
    tellShortcut(m_remove, "Remove this file", kForwardDeleteCharacter);
    m_noteFormatter.setNoteStyle(QKMIDIFormatter::kNoteName);
    frameDidChange();
    update(state);
}

float StripView::widthFor(const FileFormat& format) {
    return format.channels > 2 ? 168.0F : 128.0F;
}

void StripView::frameDidChange() {
    const float width = bounds().size.width - 2.0F * kMargin;
    const float bottom = bounds().size.height - kMargin;
    const auto row = [width](float y, float height) { return Rect{{kMargin, y}, {width, height}}; };
    m_name.setFrame(row(9.0F, 18.0F));
    m_format.setFrame(row(27.0F, 16.0F));
    const float speakers = m_speakers != nullptr ? kSpeakersHeight : 0.0F;
    if (m_speakers != nullptr) m_speakers->setFrame(row(48.0F, speakers));
    m_meters.setFrame(row(50.0F + speakers, bottom - 92.0F - 50.0F - speakers));
    m_time.setFrame({{kMargin, bottom - 88.0F}, {width - kNoteWidth, 16.0F}});
    m_note.setFrame({{kMargin + width - kNoteWidth, bottom - 88.0F}, {kNoteWidth, 16.0F}});
    m_waveform.setFrame(row(bottom - 70.0F, 38.0F));
    m_mute.setFrame({{kMargin, bottom - 24.0F}, {width - 32.0F, 24.0F}});
    m_again.setFrame(m_mute.frame());
    m_remove.setFrame({{kMargin + width - 26.0F, bottom - 24.0F}, {26.0F, 24.0F}});
}

void StripView::update(const StripState& state) {
    const StripMeter& meter = state.meter;
    m_meters.setPeaks(meter.peaks);
    m_mute.setOn(meter.muted);
    m_mute.setHidden(state.ended);
    m_again.setHidden(!state.ended);
    const int rate = state.format.rate;
    std::string time = timeText(meter.framesPlayed, rate);
    if (meter.framesTotal > 0) time += " / " + timeText(meter.framesTotal, rate);
    if (meter.underruns > 0) time += " !";
    m_time.setText(state.ended ? "ended" : time);
    m_note.setText(noteAt(state));
    if (m_speakers != nullptr) m_speakers->setPeaks(meter.peaks);
    m_waveform.setOverview(state.overview);
    m_waveform.setProgress(meter.framesTotal > 0 ? static_cast<double>(meter.framesPlayed) /
                                                       static_cast<double>(meter.framesTotal)
                                                 : -1.0);
}

void StripView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const float line = 1.0F / canvas.scale();
    canvas.fillPath(Path::roundedRect(bounds(), 8.0F), systemColor(SystemColor::Separator));
    canvas.fillPath(Path::roundedRect(bounds().inset(line, line), 8.0F - line),
                    systemColor(SystemColor::ControlBackground));
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

void StripView::keyDown(const Event& event) {
    if (event.charactersIgnoringModifiers.empty()) return View::keyDown(event);
    switch (event.charactersIgnoringModifiers.front()) {
        case u'm':
        case u'M':
            m_mute.setOn(!m_mute.isOn());
            return muteWasPressed();
        case kForwardDeleteCharacter:
            return removeWasPressed();
        default:
            View::keyDown(event);
    }
}

void StripView::muteWasPressed() {
    m_delegate.muteWasSwitched(m_key, m_mute.isOn());
}

void StripView::removeWasPressed() {
    m_delegate.removeStripWasPressed(m_key);
}

void StripView::againWasPressed() {
    m_delegate.playAgainWasPressed(m_key);
}

}  // namespace veltra::console
