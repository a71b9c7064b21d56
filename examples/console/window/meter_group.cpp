// SPDX-License-Identifier: MIT
#include "meter_group.h"

#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/drawing.h"

#include <algorithm>

namespace veltra::console {

namespace {

constexpr float kNameTop = 2.0F;  // below the glass
constexpr float kNameHeight = 14.0F;
constexpr double kLooksASecond = 60.0;

struct Words {
    const char* level;   // in the tool tip
    const char* meters;  // behind the name, for a screen reader
};
Words wordsOf(MeterKind kind) {
    constexpr Words kWords[] = {{"Peak level in dBFS", " meters"},
                                {"RMS level in dBFS, dimly the peak", " RMS meters"},
                                {"True peak level in dBTP", " true peak meters"}};
    return kWords[static_cast<std::size_t>(kind)];
}

// As much of a name as fits into the pitch of the bars: all of it, its first two letters, nothing.
// A part of a number would be another one.
StyledText fitting(StyledText name, float pitch) {
    if (name.size().width + 1.0F <= pitch) return name;
    const bool isNumber = name.string.find_first_not_of("0123456789") == std::string::npos;
    name.string.resize(isNumber ? 0 : std::min<std::size_t>(name.string.size(), 2));
    if (name.size().width + 1.0F > pitch) name.string.clear();
    return name;
}

}  // namespace

std::string unitOfPeaks(MeterKind kind) {
    return kind == MeterKind::TruePeak ? "dBTP" : "dB";
}

int MeterGroup::bars(int channels) noexcept {
    constexpr int kMostBars = 24;  // as the narrowest tall card has room for
    return std::clamp(channels, 1, kMostBars);
}

MeterGroup::MeterGroup(int channels, const ChannelPlan& plan) {
    const auto count = static_cast<std::size_t>(bars(channels));
    const auto all = static_cast<std::size_t>(std::max(channels, 1));
    for (std::size_t bar = 0, first = 0; bar < count; first = m_ends[bar++]) {
        m_ends.push_back((bar + 1) * all / count);
        const std::size_t last = m_ends[bar] - 1;
        m_channelNames.push_back(channels == 1 ? "M" : plan.channelName(first));
        std::string description = "channel " + m_channelNames.back();
        if (last > first)
            description = "channels " + m_channelNames.back() + " to " + plan.channelName(last);
        auto cell = std::make_unique<QkLevelMeterCell>();
        cell->setOrientation(LevelMeterOrientation::Vertical);
        cell->setLevelScale(LevelMeterLevels::Decibels);
        cell->setLEDPitch(CardLayout::kPitch);
        cell->setAccessibilityDescription(description);
        cell->setAccessibilityParent(this);
        m_cells.push_back(std::move(cell));
        m_averages.emplace_back(kLooksASecond);
    }
    layOut();
}

void MeterGroup::setBars(float width, float gap) {
    m_bar = width;
    m_gap = gap;
    layOut();
}

Rect MeterGroup::glassRect() const {
    return {{}, {bounds().size.width, bounds().size.height - CardLayout::kNames}};
}

void MeterGroup::layOut() {
    const Rect inside = glassRect().inset(CardLayout::kGlass, CardLayout::kGlass);
    float left = inside.minX();
    for (const auto& cell : m_cells) {
        cell->calculateInternalsFromCellFrame(
            {{left, inside.minY()}, {m_bar, std::max(inside.size.height, 0.0F)}}, *this);
        left += m_bar + m_gap;
    }
    const char* const share = m_ends.back() > m_cells.size() ? " of the loudest of neighbours" : "";
    toolTips().removeAllToolTips();
    toolTips().addToolTipRect(
        glassRect(), std::string(wordsOf(m_kind).level) + share + "; a click resets clip lights");
    setNeedsDisplay();
}

void MeterGroup::viewDidMoveToWindow() {
    Control::viewDidMoveToWindow();
    layOut();
}

float MeterGroup::loudestOf(std::size_t bar, std::span<const float> levels) const {
    float loudest = 0.0F;
    const std::size_t end = std::min(m_ends[bar], levels.size());
    for (std::size_t channel = bar > 0 ? m_ends[bar - 1] : 0; channel < end; ++channel)
        loudest = std::max(loudest, levels[channel]);
    return loudest;
}

void MeterGroup::setPeaks(std::span<const float> peaks) {
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const float peak = loudestOf(i, peaks);
        m_cells[i]->setLevel(meterPositionForAmplitude(peak));
        // What is above full scale by less than a position can say has clipped, too.
        if (peak > 1.0F && !m_cells[i]->peak()) m_cells[i]->setPeak(true);
    }
}

void MeterGroup::setSquares(std::span<const float> squares) {
    if (m_kind != MeterKind::Rms) return;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const float rms = m_averages[i].add({.meanSquare = loudestOf(i, squares), .frames = 1});
        m_cells[i]->setRms(meterPositionForAmplitude(rms));
    }
}

void MeterGroup::setKind(MeterKind kind) {
    if (kind == m_kind) return;
    m_kind = kind;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        m_averages[i].reset();
        m_cells[i]->setRms(kind == MeterKind::Rms ? std::optional(0.0F) : std::nullopt);
    }
    layOut();
    postAccessibilityNotification(AccessibilityNotification::NameChanged);
}

std::string MeterGroup::accessibilityName() const {
    return m_name + wordsOf(m_kind).meters;
}

void MeterGroup::setMuted(bool isMuted) {
    for (const auto& cell : m_cells)
        cell->setMuted(isMuted);
}

bool MeterGroup::hasClipped() const {
    return std::any_of(m_cells.begin(), m_cells.end(),
                       [](const auto& cell) { return cell->peak(); });
}

void MeterGroup::clearClips() {
    for (const auto& cell : m_cells) {
        if (cell->peak()) cell->setPeak(false);
    }
}

float MeterGroup::shownLevel() const {
    float level = 0.0F;
    for (const auto& cell : m_cells)
        level = std::max(level, cell->displayLevel());
    return level;
}

void MeterGroup::drawRect(Canvas& canvas, const Rect& dirty) {
    const Rect glass = glassRect();
    if (needsToDrawRect(glass)) drawLevelMeterGlass(canvas, glass, effectiveAppearance(), 0.0F);
    if (dirty.maxY() > glass.maxY()) drawNames(canvas);
    for (const auto& cell : m_cells) {
        if (needsToDrawRect(cell->cellFrame()))
            cell->drawWithFrame(canvas, cell->cellFrame(), *this);
    }
}

// The cells, and the glass between them.
Rect MeterGroup::opaqueRect() const {
    const Rect first = m_cells.front()->opaqueRect();
    const Rect last = m_cells.back()->opaqueRect();
    return first.isEmpty() || last.isEmpty() ? Rect{} : first.united(last);
}

void MeterGroup::drawNames(Canvas& canvas) const {
    const float pitch = m_bar + m_gap;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const StyledText name =
            fitting({m_channelNames[i], themeFont(10.0F, FontWeight::Medium),
                     theme(effectiveAppearance()).caption, TextAlignment::Center},
                    pitch);
        const Rect bar = m_cells[i]->cellFrame();
        canvas.drawText(
            name,
            {{bar.center().x - pitch * 0.5F, glassRect().maxY() + kNameTop}, {pitch, kNameHeight}},
            TextPlacement::Capitals);
    }
}

void MeterGroup::mouseDown(const Event& /*event*/) {
    clearClips();
    sendAction();
}

bool MeterGroup::wantsKey(const Event& event) const {
    return event.plainKey() == kReturnCharacter || event.plainKey() == kEnterCharacter;
}

void MeterGroup::keyDown(const Event& event) {
    if (!wantsKey(event)) return Control::keyDown(event);
    clearClips();
    sendAction();
}

std::optional<View::FocusShape> MeterGroup::focusShape() const {
    return FocusShape{glassRect(), CardLayout::kGlass};
}

std::vector<AccessibilityElement*> MeterGroup::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children;
    for (const auto& cell : m_cells)
        children.push_back(cell.get());
    return children;
}

std::vector<AccessibilityAction> MeterGroup::accessibilityActions() const {
    return {AccessibilityAction::Press};
}

bool MeterGroup::performAccessibilityAction(AccessibilityAction action) {
    if (action != AccessibilityAction::Press) return false;
    clearClips();
    sendAction();
    return true;
}

}  // namespace veltra::console
