// SPDX-License-Identifier: MIT
#include "veltra/ui/control.h"

#include "veltra/ui/application.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/keyed_coder.h"

#include <string_view>
#include <utility>

namespace veltra {

namespace {
constexpr std::string_view kTagKey = "CONTROL_TAG";
constexpr std::string_view kEnabledKey = "CONTROL_ENABLED";
}  // namespace

Control::Control(const Rect& frame, std::unique_ptr<Cell> cell) : View(frame) {
    setCell(std::move(cell));
}

Control::~Control() {
    cutAnchor();
}

void Control::setCell(std::unique_ptr<Cell> cell) {
    m_tracking.cancel();
    std::swap(m_cell, cell);
    Application::current().discard(std::move(cell));
    if (m_cell) m_cell->calculateInternalsFromCellFrame(bounds(), *this);
    setNeedsDisplay();
}

void Control::frameDidChange() {
    if (m_cell) m_cell->calculateInternalsFromCellFrame(bounds(), *this);
}

void Control::setTarget(Anchored* target) {
    m_target = target;
    m_hasTarget = target != nullptr;
}

bool Control::sendAction(Action action, Anchored* target) {
    return Application::current().sendAction(action, target, this);
}

bool Control::sendAction() {
    if (!action() || (m_hasTarget && !m_target)) return false;
    return sendAction(action(), target());
}

void Control::setEnabled(bool isEnabled) {
    if (isEnabled == m_isEnabled) return;
    m_isEnabled = isEnabled;
    if (!isEnabled) m_tracking.cancel();
    if (m_cell) m_cell->setEnabled(isEnabled);
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

void Control::setFont(const Font& font) {
    m_font = font;
    if (m_cell) m_cell->setFont(font);
    setNeedsDisplay();
}

void Control::setAlignment(TextAlignment alignment) {
    m_alignment = alignment;
    if (m_cell) m_cell->setAlignment(alignment);
    setNeedsDisplay();
}

void Control::setControlSize(ControlSize size) {
    m_controlSize = size;
    if (m_cell) m_cell->setControlSize(size);
    setNeedsDisplay();
}

void Control::setIntValue(std::int32_t value) {
    if (m_cell) m_cell->setIntValue(value);
}

void Control::setDoubleValue(double value) {
    if (m_cell) m_cell->setDoubleValue(value);
}

void Control::setStringValue(std::string_view value) {
    if (m_cell) m_cell->setStringValue(value);
}

void Control::sizeToFit() {
    if (m_cell) setFrameSize(m_cell->cellSize());
}

void Control::mouseDown(const Event& event) {
    if (!m_cell) return View::mouseDown(event);
    if (!isEnabled()) return;
    m_tracking.press(*m_cell, *this, bounds(), m_cell->prefersTrackingUntilMouseUp(), event);
}

void Control::mouseDragged(const Event& event) {
    if (!m_cell) return View::mouseDragged(event);
    m_tracking.handle(event);
}

void Control::mouseUp(const Event& event) {
    if (!m_cell) return View::mouseUp(event);
    if (!m_tracking.isActive()) return;
    const WeakPointer<Control> self(this);
    m_tracking.handle(event);
    if (!self || !m_tracking.hasSucceeded() || !m_cell) return;
    if (!m_cell->sendActionMask().contains(EventType::LeftMouseUp)) return;
    m_cell->sendAction();
    if (self) sendAction();
}

void Control::scrollWheel(const Event& event) {
    if (!m_cell) return View::scrollWheel(event);
    if (isEnabled()) m_cell->scrollWheel(event);
}

void Control::viewDidMoveToWindow() {
    if (window() == nullptr) m_tracking.cancel();
}

void Control::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    if (m_cell) m_cell->drawWithFrame(canvas, bounds(), *this);
}

void Control::encodeWithCoder(KeyedCoder& coder) const {
    coder.encodeInt64(m_tag, kTagKey);
    coder.encodeBool(m_isEnabled, kEnabledKey);
    if (m_cell) m_cell->encodeWithCoder(coder);
}

void Control::decodeWithCoder(const KeyedCoder& coder) {
    m_tag = static_cast<std::int32_t>(coder.decodeInt64(kTagKey, m_tag));
    setEnabled(coder.decodeBool(kEnabledKey, m_isEnabled));
    if (m_cell) m_cell->decodeWithCoder(coder);
}

std::vector<AccessibilityElement*> Control::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children = View::accessibilityChildren();
    if (m_cell) children.insert(children.begin(), m_cell.get());
    return children;
}

}  // namespace veltra
