#include "strip_view.h"

#include "../text.h"
#include "veltra/platform/ui/canvas.h"

#include <filesystem>

namespace veltra::console {

namespace {

constexpr float kMargin = 10.0F;

std::string timeText(std::uint64_t frames, int rate) {
    const auto seconds = static_cast<unsigned long long>(frames) / static_cast<unsigned>(rate);
    return formatted("%llu:%02llu", seconds / 60, seconds % 60);
}

std::string formatText(const FileFormat& format) {
    const std::string channels = format.channels == 1   ? "mono"
                                 : format.channels == 2 ? "stereo"
                                                        : formatted("%d channels", format.channels);
    return formatted("%g kHz, ", format.rate / 1000.0) + channels;
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
      m_meters(addSubview(std::make_unique<MeterBridge>(Rect{}, state.format.channels))),
      m_time(
          addSubview(std::make_unique<Label>(Rect{}, Font{{}, 11.0F, FontWeight::Regular, true},
                                             SystemColor::SecondaryLabel, TextAlignment::Center))),
      m_progress(addSubview(std::make_unique<ProgressBar>(Rect{}))),
      m_mute(addSubview(std::make_unique<Button>(Rect{}, "Mute", ButtonCell::Kind::Toggle))),
      m_again(addSubview(std::make_unique<Button>(Rect{}, "Again"))),
      m_remove(addSubview(std::make_unique<Button>(Rect{}, "\u00D7"))) {
    const std::string name = printable(std::filesystem::path(state.path).filename().string());
    m_name.setText(printable(std::filesystem::path(state.path).stem().string()));
    m_name.setFullText(printable(state.path));
    m_format.setText(formatText(state.format));
    m_format.setFullText(state.format.container + ", " + state.format.encoding);
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
    m_remove.toolTips().addToolTipRect({{}, {100.0F, 100.0F}}, std::string("Remove this file"));
    frameDidChange();
    update(state);
}

void StripView::frameDidChange() {
    const float width = bounds().size.width - 2.0F * kMargin;
    const float bottom = bounds().size.height - kMargin;
    const auto row = [width](float y, float height) { return Rect{{kMargin, y}, {width, height}}; };
    m_name.setFrame(row(9.0F, 18.0F));
    m_format.setFrame(row(27.0F, 16.0F));
    m_time.setFrame(row(bottom - 56.0F, 16.0F));
    m_progress.setFrame(row(bottom - 36.0F, 4.0F));
    m_meters.setFrame(row(50.0F, bottom - 62.0F - 50.0F));
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
    m_progress.setProgress(meter.framesTotal > 0 ? static_cast<double>(meter.framesPlayed) /
                                                       static_cast<double>(meter.framesTotal)
                                                 : -1.0);
}

void StripView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const float line = 1.0F / canvas.scale();
    canvas.fillPath(Path::roundedRect(bounds(), 8.0F), systemColor(SystemColor::Separator));
    canvas.fillPath(Path::roundedRect(bounds().inset(line, line), 8.0F - line),
                    systemColor(SystemColor::ControlBackground));
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
