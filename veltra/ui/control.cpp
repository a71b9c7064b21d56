// SPDX-License-Identifier: MIT
#include "veltra/ui/control.h"

#include "veltra/ui/action_cell.h"
#include "veltra/ui/application.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/keyed_coder.h"

#include <string_view>
#include <utility>

namespace veltra {

namespace {
constexpr char kTag[] = "CONTROL_TAG";
constexpr char kEnabled[] = "CONTROL_ENABLED";
constexpr char kFont[] = "CONTROL_FONT";
constexpr char kAlignment[] = "CONTROL_ALIGNMENT";
constexpr char kSize[] = "CONTROL_SIZE";
constexpr char kCell[] = "CONTROL_CELL";
}  // namespace

Control::Control(const Rect& frame, std::unique_ptr<Cell> cell) : View(frame) {
    setCell(std::move(cell));
}

Control::~Control() {
    cutAnchor();
}

void Control::setCell(std::unique_ptr<Cell> cell) {
    const WeakPointer<Control> self(this);
    m_tracking.cancel();
    if (!self) return;
    auto* const newcomer = dynamic_cast<ActionCell*>(cell.get());
    if (newcomer != nullptr && newcomer->targetAction().isEmpty()) {
        newcomer->targetAction() = targetAction();
    }
    std::swap(m_cell, cell);
    Application::current().discard(std::move(cell));
    if (!self) return;
    if (m_cell) m_cell->calculateInternalsFromCellFrame(bounds(), *this);
    setNeedsDisplay();
}

void Control::frameDidChange() {
    if (m_cell) m_cell->calculateInternalsFromCellFrame(bounds(), *this);
}

TargetAction& Control::targetAction() const {
    auto* const cell = dynamic_cast<ActionCell*>(m_cell.get());
    return cell != nullptr ? cell->targetAction() : m_own;
}

bool Control::sendAction(Action action, Anchored* target) {
    return Application::current().sendAction(action, target, this);
}

bool Control::sendAction() {
    return targetAction().isReady() && sendAction(action(), target());
}

void Control::setEnabled(bool isEnabled) {
    if (isEnabled == m_isEnabled) return;
    m_isEnabled = isEnabled;
    const WeakPointer<Control> self(this);
    if (!isEnabled) m_tracking.cancel();
    if (self && m_cell) m_cell->setEnabled(m_isEnabled);
    if (!self) return;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

template <typename T, typename Setter>
void Control::change(T& member, const T& value, Setter setter) {
    member = value;
    if (m_cell) (m_cell.get()->*setter)(value);
    setNeedsDisplay();
}

void Control::setFont(const Font& font) {
    change(m_font, font, &Cell::setFont);
}

void Control::setAlignment(TextAlignment alignment) {
    change(m_alignment, alignment, &Cell::setAlignment);
}

void Control::setControlSize(ControlSize size) {
    change(m_controlSize, size, &Cell::setControlSize);
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
}

bool Control::wantsKey(const Event& event) const {
    return m_cell && isEnabled() && m_cell->wantsKey(event);
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
    coder.encodeInt64(m_tag, kTag);
    coder.encodeBool(m_isEnabled, kEnabled);
    coder.encodeFont(m_font, kFont);
    coder.encodeInt64(static_cast<int>(m_alignment), kAlignment);
    coder.encodeInt64(static_cast<int>(m_controlSize), kSize);
    if (m_cell) coder.encodeObject(*m_cell, kCell);
}

void Control::decodeWithCoder(const KeyedCoder& coder) {
    m_tag = static_cast<std::int32_t>(coder.decodeInt64(kTag, m_tag));
    const WeakPointer<Control> self(this);  // what ends a drag may delete it
    setEnabled(coder.decodeBool(kEnabled, m_isEnabled));
    if (!self) return;
    setFont(coder.decodeFont(kFont, m_font));
    setAlignment(coder.decodeEnum(kAlignment, m_alignment, TextAlignment::Right));
    setControlSize(coder.decodeEnum(kSize, m_controlSize, ControlSize::Mini));
    if (m_cell) coder.decodeObject(*m_cell, kCell);
}

std::vector<AccessibilityElement*> Control::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children = View::accessibilityChildren();
    if (m_cell) children.insert(children.begin(), m_cell.get());
    return children;
}

}  // namespace veltra
