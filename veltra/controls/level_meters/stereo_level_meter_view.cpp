// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/stereo_level_meter_view.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace veltra {

namespace {

std::unique_ptr<QkLevelMeterCell> makeCell(const CellFactory& cells) {
    std::unique_ptr<Cell> cell = cells.make();
    auto* const meter = dynamic_cast<QkLevelMeterCell*>(cell.get());
    if (meter == nullptr) return std::make_unique<QkLevelMeterCell>();
    static_cast<void>(cell.release());
    return std::unique_ptr<QkLevelMeterCell>(meter);
}

}  // namespace

DfStereoLevelMeterView::DfStereoLevelMeterView(const Rect& frame, const CellFactory& cells)
    : Control(frame), m_cellL(makeCell(cells)), m_cellR(makeCell(cells)) {
    for (QkLevelMeterCell* cell : {m_cellL.get(), m_cellR.get()}) {
        cell->setControlView(this);
        cell->setAccessibilityParent(this);
    }
    m_cellL->setAccessibilityDescription("left stereo");
    m_cellR->setAccessibilityDescription("right stereo");
    layOut();
}

DfStereoLevelMeterView::~DfStereoLevelMeterView() {
    cutAnchor();
}

CellFactory DfStereoLevelMeterView::cellClass() {
    return cellFactory<QkLevelMeterCell>();
}

void DfStereoLevelMeterView::setLevelL(float levelL, float levelR, bool forceDisplayIfNeeded) {
    const WeakPointer<View> self(this);
    m_cellL->setLevel(levelL, forceDisplayIfNeeded);
    if (self) m_cellR->setLevel(levelR, forceDisplayIfNeeded);
}

void DfStereoLevelMeterView::setPeakL(bool isOn) {
    m_cellL->setPeak(isOn);
}

void DfStereoLevelMeterView::setPeakR(bool isOn) {
    m_cellR->setPeak(isOn);
}

void DfStereoLevelMeterView::setRmsL(std::optional<float> rmsL, std::optional<float> rmsR) {
    m_cellL->setRms(rmsL);
    m_cellR->setRms(rmsR);
}

void DfStereoLevelMeterView::setMuted(bool isMuted) {
    m_cellL->setMuted(isMuted);
    m_cellR->setMuted(isMuted);
}

void DfStereoLevelMeterView::setLEDCount(std::uint32_t count) {
    m_cellL->setLEDCount(count);
    m_cellR->setLEDCount(count);
}

void DfStereoLevelMeterView::setLEDPitch(float points) {
    m_cellL->setLEDPitch(points);
    m_cellR->setLEDPitch(points);
}

void DfStereoLevelMeterView::setLevelScale(LevelMeterLevels scale) {
    m_cellL->setLevelScale(scale);
    m_cellR->setLevelScale(scale);
}

void DfStereoLevelMeterView::setFallBackStep(float step) {
    m_cellL->setFallBackStep(step);
    m_cellR->setFallBackStep(step);
}

void DfStereoLevelMeterView::setFallBackStepTime(double seconds) {
    m_cellL->setFallBackStepTime(seconds);
    m_cellR->setFallBackStepTime(seconds);
}

void DfStereoLevelMeterView::setMaxLevelHoldTime(double seconds) {
    m_cellL->setMaxLevelHoldTime(seconds);
    m_cellR->setMaxLevelHoldTime(seconds);
}

void DfStereoLevelMeterView::setOnStateLEDInset(float inset) {
    m_cellL->setOnStateLEDInset(inset);
    m_cellR->setOnStateLEDInset(inset);
}

void DfStereoLevelMeterView::setImageIDs(std::int32_t levelMeterImageID,
                                         std::int32_t peakLEDImageID) {
    m_ImageIDLevel = levelMeterImageID;
    m_ImageIDPeak = peakLEDImageID;
    m_cellL->setImageIDs(m_ImageIDLevel, m_ImageIDPeak);
    m_cellR->setImageIDs(m_ImageIDLevel, m_ImageIDPeak);
    layOut();
}

void DfStereoLevelMeterView::setOrientation(std::optional<LevelMeterOrientation> orientation) {
    m_orientation = orientation;
    layOut();
}

LevelMeterOrientation DfStereoLevelMeterView::orientation() const noexcept {
    const Size size = bounds().size;
    return m_orientation.value_or(size.width > size.height ? LevelMeterOrientation::Horizontal
                                                           : LevelMeterOrientation::Vertical);
}

void DfStereoLevelMeterView::setPadding(std::int32_t padding) {
    m_padding = std::max(padding, 0);
    layOut();
}

float DfStereoLevelMeterView::glassEdge() const {
    return levelMeterLook(m_cellL->levelMeterImageID())->measures(orientation()).glass;
}

void DfStereoLevelMeterView::getCellFrames(Rect& left, Rect& right) const {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const auto whole = [scale](float points) { return std::floor(points * scale) / scale; };
    const auto nearest = [scale](float points) { return std::round(points * scale) / scale; };
    const float edge = nearest(glassEdge());
    const Size size{bounds().size.width - 2.0F * edge, bounds().size.height - 2.0F * edge};
    const float gap = nearest(static_cast<float>(m_padding));
    const float wanted = std::max(m_cellL->cellHeight(), 0.0F);
    if (orientation() == LevelMeterOrientation::Vertical) {
        const float width = std::max(whole((size.width - gap) * 0.5F), 0.0F);
        const float height = std::min(wanted, std::max(size.height, 0.0F));
        const float low = isFlipped() ? edge + size.height - height : edge;  // they stand on it
        left = {{edge, low}, {width, height}};
        right = {{edge + width + gap, low}, {width, height}};
        return;
    }
    const float height = std::min(wanted, std::max(whole((size.height - gap) * 0.5F), 0.0F));
    const float near = edge + whole((size.height - 2.0F * height - gap) * 0.5F);
    const float far = near + height + gap;
    const float width = std::max(size.width, 0.0F);
    left = {{edge, isFlipped() ? near : far}, {width, height}};
    right = {{edge, isFlipped() ? far : near}, {width, height}};
}

// Asks for no redraw by itself and leaves the tool tips alone.
void DfStereoLevelMeterView::placeCells() {
    m_cellL->setOrientation(orientation());
    m_cellR->setOrientation(orientation());
    Rect left;
    Rect right;
    getCellFrames(left, right);
    m_cellL->calculateInternalsFromCellFrame(left, *this);
    m_cellR->calculateInternalsFromCellFrame(right, *this);
}

void DfStereoLevelMeterView::layOut() {
    placeCells();
    const auto renew = [this](std::int32_t& tag, const Rect& rect, const std::string& text) {
        toolTips().removeToolTip(tag);
        tag = text.empty() || rect.isEmpty() ? 0 : toolTips().addToolTipRect(rect, text);
    };
    renew(m_ToolTipTagLevelL, m_cellL->levelMeterRect(), m_levelText);
    renew(m_ToolTipTagLevelR, m_cellR->levelMeterRect(), m_levelText);
    renew(m_ToolTipTagPeakL, m_cellL->peakLEDRect(), m_peakText);
    renew(m_ToolTipTagPeakR, m_cellR->peakLEDRect(), m_peakText);
    setNeedsDisplay();
}

void DfStereoLevelMeterView::setToolTips(const std::string& levelText,
                                         const std::string& peakText) {
    m_levelText = levelText;
    m_peakText = peakText;
    layOut();
}

void DfStereoLevelMeterView::viewDidMoveToWindow() {
    Control::viewDidMoveToWindow();
    if (window() == nullptr) return;
    layOut();  // the window's scale moves the clip lights by fractions of a point
}

void DfStereoLevelMeterView::mouseDown(const Event& /*event*/) {
    if (isEnabled()) clearPeaksAndSendAction();
}

void DfStereoLevelMeterView::clearPeaksAndSendAction() {
    const WeakPointer<View> self(this);
    placeCells();
    m_cellL->setPeak(false);
    if (self) m_cellR->setPeak(false);
    if (!self) return;
    setNeedsDisplay();
    sendAction();
}

// The cells draw what lies in their frames: whether anything beside them has to be drawn.
bool DfStereoLevelMeterView::needsGlass() const {
    const Rect left = m_cellL->cellFrame();
    const Rect right = m_cellR->cellFrame();
    const Rect cells = left.united(right);
    const Size size = bounds().size;
    const Rect between =
        orientation() == LevelMeterOrientation::Vertical
            ? Rect{{left.maxX(), 0.0F}, {right.minX() - left.maxX(), size.height}}
            : Rect{{0.0F, std::min(left.maxY(), right.maxY())},
                   {size.width, cells.size.height - left.size.height - right.size.height}};
    const Rect strips[] = {between,
                           {{}, {cells.minX(), size.height}},
                           {{cells.maxX(), 0.0F}, {size.width - cells.maxX(), size.height}},
                           {{}, {size.width, cells.minY()}},
                           {{0.0F, cells.maxY()}, {size.width, size.height - cells.maxY()}}};
    return std::any_of(std::begin(strips), std::end(strips),
                       [this](const Rect& strip) { return needsToDrawRect(strip); });
}

void DfStereoLevelMeterView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    if (needsGlass()) {
        const Rect meters = m_cellL->rectOfMeter().united(m_cellR->rectOfMeter());
        if (const float edge = glassEdge(); edge > 0.0F && !meters.isEmpty())
            drawLevelMeterGlass(canvas, meters, effectiveAppearance(), edge);
    }
    for (QkLevelMeterCell* cell : {m_cellL.get(), m_cellR.get()}) {
        if (needsToDrawRect(cell->cellFrame()))
            cell->drawWithFrame(canvas, cell->cellFrame(), *this);
    }
}

// The cells, and the glass between them.
Rect DfStereoLevelMeterView::opaqueRect() const {
    const Rect left = m_cellL->opaqueRect();
    const Rect right = m_cellR->opaqueRect();
    if (left.isEmpty() || right.isEmpty() || !(glassEdge() > 0.0F)) return {};
    return left.united(right);
}

std::vector<AccessibilityElement*> DfStereoLevelMeterView::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children = Control::accessibilityChildren();
    children.push_back(m_cellL.get());
    children.push_back(m_cellR.get());
    return children;
}

std::vector<AccessibilityAction> DfStereoLevelMeterView::accessibilityActions() const {
    if (!isEnabled()) return {};
    return {AccessibilityAction::Press};
}

bool DfStereoLevelMeterView::performAccessibilityAction(AccessibilityAction action) {
    if (action != AccessibilityAction::Press || !isEnabled()) return false;
    clearPeaksAndSendAction();
    return true;
}

}  // namespace veltra
