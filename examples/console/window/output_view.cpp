// SPDX-License-Identifier: MIT
#include "output_view.h"

#include "console_readout.h"
#include "icons.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/platform/clock.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 10.0F;
constexpr float kBar = 16.0F;
constexpr float kSmallBar = 10.0F;
constexpr float kReadoutGap = 4.0F;
constexpr float kBesideName = 20.0F;

}  // namespace

OutputView::OutputView(ConsoleDelegate& delegate)
    : m_delegate(delegate),
      m_title(addSubview(
          std::make_unique<Label>(themeFont(13.0F, FontWeight::SemiBold), &Theme::text))),
      m_device(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption,
                                                  TextAlignment::Left, TextTruncation::End))),
      m_menu(addSubview(std::make_unique<ConsoleButton>(Rect{}, ""))),
      m_history(addSubview(std::make_unique<HistoryView>())),
      m_dim(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Dim", ButtonCell::Kind::Toggle))),
      m_mono(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Mono", ButtonCell::Kind::Toggle))),
      m_balance(addSubview(std::make_unique<StripSlider>(StripSlider::Kind::Pan))),
      m_balanceText(addSubview(
          std::make_unique<Label>(themeFont(11.0F), &Theme::label, TextAlignment::Right))),
      m_gain(addSubview(std::make_unique<GainField>())),
      m_fader(addSubview(std::make_unique<StripSlider>(StripSlider::Kind::Fader))),
      m_readouts{&addSubview(std::make_unique<ConsoleReadout>()),
                 &addSubview(std::make_unique<ConsoleReadout>())},
      m_scale(addSubview(std::make_unique<LevelMeterScaleView>())),
      m_meters(addSubview(std::make_unique<MeterGroup>(2, channelPlan(std::array<int, 2>{})))),
      m_footer(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption))) {
    m_title.setText("Output");
    m_footer.setText("Peak since start");
    m_meters.setName("Output");
    m_scale.setMeter(&m_meters.firstCell());
    m_menu.buttonCell().setStyle(ButtonCell::Style::Bare);
    m_menu.buttonCell().setIcon(drawMoreIcon);
    m_menu.buttonCell().setAccessibilityName("Audio device");
    m_menu.setHelp("Choose the audio device");
    for (ConsoleButton* const button : {&m_dim, &m_mono})
        button->setFont(themeFont(11.0F, FontWeight::SemiBold));
    m_dim.setHelp("20 dB down");
    m_mono.setHelp("Both channels alike");
    m_balance.sliderCell().setAccessibilityName("balance");
    m_fader.sliderCell().setAccessibilityName("output fader");
    m_gain.setAccessibilityName("output gain");
    m_readouts[0]->setAccessibilityName("left output peak");
    m_readouts[1]->setAccessibilityName("right output peak");

    const auto connect = [this](Control& control, Action action) {
        control.setTarget(this);
        control.setAction(action);
    };
    connect(m_menu, action<&OutputView::deviceWasPressed>());
    connect(m_dim, action<&OutputView::dimWasPressed>());
    connect(m_mono, action<&OutputView::monoWasPressed>());
    connect(m_balance, action<&OutputView::balanceWasMoved>());
    connect(m_gain, action<&OutputView::gainWasTyped>());
    connect(m_fader, action<&OutputView::faderWasMoved>());
    connect(m_meters, action<&OutputView::clipsWereCleared>());
    for (PeakReadout* const readout : m_readouts)
        connect(*readout, action<&OutputView::clipsWereCleared>());
}

void OutputView::frameDidChange() {
    const bool isTall = cardKind(bounds().size.height) >= CardKind::Mid;
    m_layout = CardLayout::make(bounds().size, 2, isTall ? kBar : kSmallBar);
    const auto place = [](View& view, const Rect& rect) {
        view.setHidden(rect.isEmpty());
        view.setFrame(rect);
    };
    Rect title = m_layout.name;
    title.size.width -= kBesideName;
    m_title.setFrame(title);
    m_menu.setFrame(m_layout.more);
    place(m_device, m_layout.format);
    place(m_history, m_layout.picture);
    m_history.setHasAxis(m_layout.kind == CardKind::Full);
    m_dim.setFrame(isTall ? m_layout.switches[0]
                          : m_layout.switches[0].united(m_layout.switches[1]));
    place(m_mono, isTall ? m_layout.switches[1] : Rect{});
    place(m_balance, m_layout.pan);
    place(m_balanceText, m_layout.panText);
    place(m_gain, isTall ? m_layout.gain : Rect{});
    // Low cards have room for one number: the gain field's place, too.
    Rect peaks = m_layout.peak;
    if (!isTall && !m_layout.gain.isEmpty()) peaks = peaks.united(m_layout.gain);
    const float half = isTall ? (peaks.size.width - kReadoutGap) * 0.5F : peaks.size.width;
    m_readouts[0]->setFrame({peaks.origin, {half, peaks.size.height}});
    place(*m_readouts[1], isTall ? Rect{{peaks.minX() + half + kReadoutGap, peaks.minY()},
                                        {half, peaks.size.height}}
                                 : Rect{});
    place(m_fader, m_layout.fader);
    m_fader.setHasScale(isTall);
    m_scale.setFrame(m_layout.scale);
    m_meters.setFrame(m_layout.meter);
    m_meters.setBars(m_layout.bar, m_layout.barGap);
    place(m_footer, m_layout.footer);
    setNeedsDisplay();
}

void OutputView::update(const ConsoleState& state) {
    const float loudest = std::max(state.outputPeaks[0], state.outputPeaks[1]);
    m_device.setText(state.outputName);
    m_device.setFullText(state.outputName);
    m_history.add(loudest, Clocks::current().monotonic().moment());
    m_dim.setOn(state.dimmed);
    m_mono.setOn(state.mono);
    m_balance.setLevel(state.outputBalance);
    m_balanceText.setText(panText(state.outputBalance));
    m_balanceText.setColor(state.outputBalance == 0.0 ? &Theme::label : &Theme::text);
    m_fader.setLevel(state.outputGainDecibels);
    if (!m_gain.isEditing()) m_gain.setDecibels(state.outputGainDecibels);
    // A single read-out speaks for both channels.
    const bool isSingle = m_readouts[1]->isHidden();
    m_readouts[0]->raise(isSingle ? loudest : state.outputPeaks[0]);
    m_readouts[1]->raise(state.outputPeaks[1]);
    m_meters.setPeaks(state.outputPeaks);
    m_meters.setSquares(state.outputSquares);
}

void OutputView::setMeterKind(MeterKind kind) {
    m_meters.setKind(kind);
    for (PeakReadout* const readout : m_readouts)
        readout->setAccessibilityUnit(unitOfPeaks(kind));
    m_footer.setText(kind == MeterKind::TruePeak ? "True peak since start" : "Peak since start");
}

bool OutputView::hasClipped() const {
    return m_meters.hasClipped() || m_readouts[0]->isClipped() || m_readouts[1]->isClipped();
}

void OutputView::clearClips() {
    m_meters.clearClips();
    for (PeakReadout* const readout : m_readouts)
        readout->reset();
}

bool OutputView::takeKeyboard() {
    return window() != nullptr && window()->giveKeyboardTo(m_menu);
}

void OutputView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    drawPlate(canvas, bounds(), kRadius, colors.card, colors.line);
}

void OutputView::deviceWasPressed() {
    m_delegate.deviceMenuWasPressed(m_menu);
}

void OutputView::dimWasPressed() {
    m_delegate.dimWasSwitched(m_dim.isOn());
}

void OutputView::monoWasPressed() {
    m_delegate.monoWasSwitched(m_mono.isOn());
}

void OutputView::balanceWasMoved() {
    m_delegate.outputBalanceWasSet(m_balance.level());
}

void OutputView::gainWasTyped() {
    m_delegate.outputGainWasSet(m_gain.decibels());
}

void OutputView::faderWasMoved() {
    m_delegate.outputGainWasSet(m_fader.level());
}

void OutputView::clipsWereCleared() {
    clearClips();
}

}  // namespace veltra::console
