// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/cell_group_control.h"

#include "veltra/controls/number_editor/cell_row.h"
#include "veltra/controls/number_editor/number_editor_delegate.h"
#include "veltra/ui/application.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <utility>

namespace veltra {

namespace {
constexpr char kBackground[] = "CELLGROUP_BACKGROUNDCOLOR";
constexpr char kEditBackground[] = "CELLGROUP_EDITBACKGROUNDCOLOR";
constexpr char kText[] = "CELLGROUP_TEXTCOLOR";
constexpr char kEditText[] = "CELLGROUP_EDITTEXTCOLOR";
constexpr char kDrawsBackground[] = "CELLGROUP_DRAWSBACKGROUND";
constexpr char kNoSmoothing[] = "CELLGROUP_DISABLEFONTSMOOTHING";
}  // namespace

QkCellGroupControl::QkCellGroupControl(const Rect& frame) : Control(frame) {}

QkCellGroupControl::~QkCellGroupControl() {
    cutAnchor();
}

DfNumberEditorControlDelegate* QkCellGroupControl::delegate() const noexcept {
    return m_controlDelegate.get();
}

void QkCellGroupControl::setDelegate(DfNumberEditorControlDelegate* delegate) {
    m_controlDelegate = delegate;
}

// The cells.

void QkCellGroupControl::addCell(std::unique_ptr<Cell> cell, const Rect& frame) {
    Cell& added = *cell;
    m_cells.push_back(std::move(cell));
    m_cellFrames.push_back(frame);
    added.calculateInternalsFromCellFrame(frame, *this);
    setUpAddedCellAttributes(added);
    updateCellInside(added);
    postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
}

void QkCellGroupControl::addCell(std::unique_ptr<Cell> cell, Size size) {
    const float left = m_cellFrames.empty() ? 0.0F : m_cellFrames.back().maxX();
    addCell(std::move(cell), Rect{{left, 0.0F}, size});
}

void QkCellGroupControl::addCell(std::unique_ptr<Cell> cell, float width) {
    addCell(std::move(cell), Size{width, bounds().size.height});
}

void QkCellGroupControl::setUpAddedCellAttributes(Cell& cell) {
    cell.setFont(font());
    cell.setAlignment(alignment());
    cell.setControlSize(controlSize());
    cell.setEnabled(isEnabled());
    auto* const editor = dynamic_cast<QkNumberEditorCell*>(&cell);
    if (editor == nullptr) return;
    editor->setBackgroundColor(m_backgroundColor);
    editor->setEditBackgroundColor(m_editBackgroundColor);
    editor->setTextColor(m_textColor);
    editor->setEditTextColor(m_editTextColor);
    editor->setDrawsBackground(m_drawsBackground);
    editor->setDisablesFontSmoothing(m_disableFontSmoothing);
    editor->setDelegate(this);
}

void QkCellGroupControl::setFrameOfCellAtIndex(const Rect& frame, std::int32_t index) {
    if (!isIndex(index)) return;
    const auto at = static_cast<std::size_t>(index);
    if (frame == m_cellFrames[at]) return;
    setNeedsDisplayInRect(m_cellFrames[at]);
    m_cellFrames[at] = frame;
    m_cells[at]->calculateInternalsFromCellFrame(frame, *this);
    setNeedsDisplayInRect(frame);
}

void QkCellGroupControl::setSizeOfCellAtIndex(Size size, std::int32_t index) {
    setFrameOfCellAtIndex({frameOfCellAtIndex(index).origin, size}, index);
}

void QkCellGroupControl::setWidthOfCellAtIndex(float width, std::int32_t index) {
    setSizeOfCellAtIndex({width, frameOfCellAtIndex(index).size.height}, index);
}

void QkCellGroupControl::drop(std::unique_ptr<Cell> cell) {
    if (m_editingCell.get() == cell.get()) m_editingCell = nullptr;
    if (m_mouseTrackingCell.get() == cell.get()) endTracking();
    if (m_hoveredCell.get() == cell.get()) m_hoveredCell = nullptr;
    if (auto* const editor = dynamic_cast<QkNumberEditorCell*>(cell.get())) {
        editor->setDelegate(nullptr);
        editor->setTarget(nullptr);
    }
    cell->setControlView(nullptr);
    Application::current().discard(std::move(cell));
}

void QkCellGroupControl::removeCellAtIndex(std::int32_t index) {
    if (!isIndex(index)) return;
    setNeedsDisplayInRect(frameOfCellAtIndex(index));
    std::unique_ptr<Cell> cell = std::move(m_cells[static_cast<std::size_t>(index)]);
    m_cells.erase(m_cells.begin() + index);
    m_cellFrames.erase(m_cellFrames.begin() + index);
    drop(std::move(cell));
    postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
}

void QkCellGroupControl::removeAllCells() {
    m_cellFrames.clear();
    for (std::unique_ptr<Cell>& cell : std::exchange(m_cells, {}))
        drop(std::move(cell));
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
}

std::int32_t QkCellGroupControl::indexOfCell(const Cell* cell) const noexcept {
    const auto found = std::find_if(m_cells.begin(), m_cells.end(),
                                    [cell](const auto& other) { return other.get() == cell; });
    return found != m_cells.end() ? static_cast<std::int32_t>(found - m_cells.begin()) : -1;
}

Cell* QkCellGroupControl::cellAtIndex(std::int32_t index) const noexcept {
    return isIndex(index) ? m_cells[static_cast<std::size_t>(index)].get() : nullptr;
}

Rect QkCellGroupControl::frameOfCellAtIndex(std::int32_t index) const noexcept {
    return isIndex(index) ? m_cellFrames[static_cast<std::size_t>(index)] : Rect{};
}

void QkCellGroupControl::recalculateCellPositions() {
    std::vector<Rect> frames = m_cellFrames;
    packFromLeft(frames);
    for (std::int32_t i = 0; i < cellCount(); ++i)
        setFrameOfCellAtIndex(frames[static_cast<std::size_t>(i)], i);
}

void QkCellGroupControl::recalculateCellPositionsAndSizes() {
    for (std::int32_t i = 0; i < cellCount(); ++i)
        setSizeOfCellAtIndex({cellAtIndex(i)->cellSize().width, bounds().size.height}, i);
    recalculateCellPositions();
}

void QkCellGroupControl::updateCellInside(const Cell& cell) {
    setNeedsDisplayInRect(frameOfCellAtIndex(indexOfCell(&cell)));
}

// Settings.

template <typename Setter, typename T>
void QkCellGroupControl::push(Setter setter, const T& value) {
    forEachEditorCell([&](QkNumberEditorCell& cell) { (cell.*setter)(value); });
    setNeedsDisplay();
}

void QkCellGroupControl::setBackgroundColor(const MaybeColor& color) {
    m_backgroundColor = color;
    push(&QkNumberEditorCell::setBackgroundColor, color);
}

void QkCellGroupControl::setEditBackgroundColor(const MaybeColor& color) {
    m_editBackgroundColor = color;
    push(&QkNumberEditorCell::setEditBackgroundColor, color);
}

void QkCellGroupControl::setTextColor(const MaybeColor& color) {
    m_textColor = color;
    push(&QkNumberEditorCell::setTextColor, color);
}

void QkCellGroupControl::setEditTextColor(const MaybeColor& color) {
    m_editTextColor = color;
    push(&QkNumberEditorCell::setEditTextColor, color);
}

void QkCellGroupControl::keepDrawsBackground(bool draws) {
    m_drawsBackground = draws;
    setNeedsDisplay();
}

void QkCellGroupControl::setDrawsBackground(bool draws) {
    keepDrawsBackground(draws);
    push(&QkNumberEditorCell::setDrawsBackground, draws);
}

void QkCellGroupControl::setDisablesFontSmoothing(bool disables) {
    m_disableFontSmoothing = disables;
    push(&QkNumberEditorCell::setDisablesFontSmoothing, disables);
}

void QkCellGroupControl::setFont(const Font& font) {
    Control::setFont(font);
    for (const auto& cell : m_cells)
        cell->setFont(font);
}

void QkCellGroupControl::setAlignment(TextAlignment alignment) {
    Control::setAlignment(alignment);
    for (const auto& cell : m_cells)
        cell->setAlignment(alignment);
}

void QkCellGroupControl::setControlSize(ControlSize size) {
    Control::setControlSize(size);
    for (const auto& cell : m_cells)
        cell->setControlSize(size);
}

void QkCellGroupControl::setEnabled(bool isEnabled) {
    const WeakPointer<View> self(this);
    if (!isEnabled) {
        loseTracking();
        if (self) stopEditingAndResignFirstResponder(true);
        if (!self) return;
    }
    Control::setEnabled(isEnabled);
    for (std::size_t i = 0; self && i < m_cells.size(); ++i)
        m_cells[i]->setEnabled(Control::isEnabled());
}

// Editing.

void QkCellGroupControl::startEditingForCell(Cell* cell) {
    auto* const editor = dynamic_cast<QkNumberEditorCell*>(cell);
    if (editor == nullptr || !isEnabled() || !isEditableCell(*editor)) return;
    if (editor == m_editingCell.get()) return;
    const WeakPointer<View> self(this);
    const WeakPointer<QkNumberEditorCell> next(editor);
    stopEditingAndResignFirstResponder(false);
    if (!self || !next || indexOfCell(editor) < 0) return;
    // What has been committed may have changed that, or have begun to edit another cell.
    if (m_editingCell || !isEnabled() || !isEditableCell(*editor)) return;
    m_editingCell = editor;
    editor->startEditing();
    setNeedsDisplay();
}

void QkCellGroupControl::stopEditingAndResignFirstResponder(bool resigns) {
    if (m_editingCell) m_editingCell->stopEditingAndResignFirstResponder(resigns);
}

void QkCellGroupControl::stoppedEditingWithReason(QkNumberEditorCell& /*cell*/,
                                                  std::int32_t /*reason*/) {
    m_editingCell = nullptr;
}

bool QkCellGroupControl::makeFirstResponderWithoutStartingEditing() {
    if (window() == nullptr) return false;
    const WeakPointer<View> self(this);
    const bool starts = std::exchange(m_becomeFirstResponderStartsEditing, false);
    const bool succeeds = window()->makeFirstResponder(this);
    if (self) m_becomeFirstResponderStartsEditing = starts;
    return self && succeeds;
}

bool QkCellGroupControl::becomeFirstResponder() {
    const Application& application = Application::current();
    const bool isByPress = application.isHandlingEvent() &&
                           application.currentEvent()->type == EventType::LeftMouseDown;
    if (m_becomeFirstResponderStartsEditing && !isByPress) startEditingForCell(cellAtIndex(0));
    return true;
}

bool QkCellGroupControl::resignFirstResponder() {
    const WeakPointer<View> self(this);
    stopEditingAndResignFirstResponder(false);
    if (self) setNeedsDisplay();
    return true;
}

void QkCellGroupControl::viewDidMoveToWindow() {
    Control::viewDidMoveToWindow();
    if (window() != nullptr) return;
    const WeakPointer<View> self(this);
    setHoveredCell(nullptr);
    loseTracking();
    if (self) stopEditingAndResignFirstResponder(false);
}

// The pointer.

void QkCellGroupControl::mouseDown(const Event& event) {
    const WeakPointer<View> self(this);
    m_mouseIsDown = true;
    mouseButtonWentDown();
    if (!self) return;
    const Point point = locationOf(event);
    for (std::int32_t i = 0; i < cellCount(); ++i) {
        Cell& cell = *cellAtIndex(i);
        const Rect frame = frameOfCellAtIndex(i);
        if (!isEditableCell(cell) || !pointInRect(point, frame)) continue;
        const bool starts = willStartTrackingCellWithIndex(i);
        if (!self) return;
        if (starts && cellAtIndex(i) == &cell) cellMouseEventHandling(cell, frame, event);
        if (!self) return;
    }
}

void QkCellGroupControl::cellMouseEventHandling(Cell& cell, const Rect& rect, const Event& event) {
    if (event.clickCount != 2) return startTrackingCell(cell, rect, event);
    const WeakPointer<Cell> clicked(&cell);
    if (!makeFirstResponderWithoutStartingEditing() || !clicked) return;
    if (m_editingCell.get() == &cell) return stopEditingAndResignFirstResponder(true);
    startEditingForCell(&cell);
}

void QkCellGroupControl::startTrackingCell(Cell& cell, const Rect& rect, const Event& event) {
    const WeakPointer<View> self(this);
    const WeakPointer<Cell> pressed(&cell);
    const Point point = QkNumberEditorCell::convertPoint(locationOf(event), rect.origin);
    if (!cell.startTracking(point, *this) || !self || !pressed) return;
    m_mouseTrackingEventNumber = event.eventNumber;
    m_mouseTrackingCell = &cell;
    m_mouseTrackingCellFrame = rect;
    m_mouseTrackingSteps.reset();
    m_mouseTrackingActive = true;
}

// The parts of a point by which a pointer moves on a scaled screen add up to whole points: rounded
// one by one they would lead up only.
void QkCellGroupControl::mouseDragged(const Event& event) {
    if (!m_mouseTrackingActive || event.eventNumber != m_mouseTrackingEventNumber) return;
    if (!m_mouseTrackingCell) return endTracking();
    if (m_locksPointer && !m_pointerIsLocked && window() != nullptr)
        m_pointerIsLocked = window()->lockPointer(true);
    const Point way = movementOf(event);
    const Point current =
        QkNumberEditorCell::convertPoint(locationOf(event), m_mouseTrackingCellFrame.origin);
    const float height = WholeSteps::onGrid(current.y);
    const Point now{current.x, height};
    const Point last{current.x - way.x, height - m_mouseTrackingSteps.roundedUp(way.y)};
    const WeakPointer<View> self(this);
    const bool goesOn = m_mouseTrackingCell->continueTracking(last, now, *this);
    if (!self || !m_mouseTrackingActive || goesOn) return;
    const WeakPointer<Cell> cell(m_mouseTrackingCell);
    endTracking();
    if (cell) cell->stopTracking(last, now, *this, false);
}

void QkCellGroupControl::mouseUp(const Event& event) {
    m_mouseIsDown = false;
    const WeakPointer<View> self(this);
    const bool isTracked = m_mouseTrackingActive && event.eventNumber == m_mouseTrackingEventNumber;
    if (isTracked && m_mouseTrackingCell) {
        const Point point =
            QkNumberEditorCell::convertPoint(locationOf(event), m_mouseTrackingCellFrame.origin);
        const bool isLost = event.clickCount == 0;
        m_mouseTrackingCell->stopTracking(point, point, *this, !isLost);
        if (!self) return;
    }
    mouseButtonWentUp();
    if (self) endTracking();
}

void QkCellGroupControl::endTracking() {
    m_mouseTrackingActive = false;
    m_mouseTrackingCell = nullptr;
    if (std::exchange(m_pointerIsLocked, false) && window() != nullptr)
        window()->lockPointer(false);
}

// As with the release that will not come.
void QkCellGroupControl::loseTracking() {
    if (!m_mouseIsDown) return;
    Event release;
    release.type = EventType::LeftMouseUp;
    release.eventNumber = m_mouseTrackingEventNumber;
    mouseUp(release);
}

std::optional<std::size_t> QkCellGroupControl::indexAtPoint(Point point) const {
    const auto found =
        std::find_if(m_cellFrames.begin(), m_cellFrames.end(),
                     [point](const Rect& frame) { return pointInRect(point, frame); });
    if (found == m_cellFrames.end()) return std::nullopt;
    return static_cast<std::size_t>(found - m_cellFrames.begin());
}

void QkCellGroupControl::scrollWheel(const Event& event) {
    const WeakPointer<View> self(this);
    if (const auto index = indexAtPoint(locationOf(event))) {
        Cell& cell = *m_cells[*index];
        if (cell.isEditable()) cell.scrollWheel(event);
    }
    if (self) scrollWheelWasMoved();
}

void QkCellGroupControl::setHoveredCell(Cell* cell) {
    auto* const editor = dynamic_cast<QkNumberEditorCell*>(cell);
    if (editor == m_hoveredCell.get()) return;
    if (m_hoveredCell) m_hoveredCell->setHovered(false);
    m_hoveredCell = editor;
    if (editor != nullptr) editor->setHovered(true);
}

void QkCellGroupControl::mouseMoved(const Event& event) {
    const auto index = indexAtPoint(locationOf(event));
    setHoveredCell(index ? m_cells[*index].get() : nullptr);
    Control::mouseMoved(event);
}

void QkCellGroupControl::mouseExited(const Event& /*event*/) {
    setHoveredCell(nullptr);
}

// Keys.

void QkCellGroupControl::keyDown(const Event& event) {
    if (event.charactersIgnoringModifiers.empty()) return;
    switch (event.charactersIgnoringModifiers.front()) {
        case kTabCharacter:
        case kBackTabCharacter:
            return Control::keyDown(event);
        case kReturnCharacter:
        case kEnterCharacter:
            if (event.isRepeat)
                return;  // or it would begin and end to edit for as long as it is held
            return m_editingCell ? sendToEditingCell(event) : startEditingForCell(cellAtIndex(0));
        case kLeftArrowCharacter:
            return walk(false, event);
        case kRightArrowCharacter:
            return walk(true, event);
        default:
            return m_editingCell ? sendToEditingCell(event) : Control::keyDown(event);
    }
}

void QkCellGroupControl::sendToEditingCell(const Event& event) {
    const WeakPointer<View> self(this);
    m_editingCell->keyDown(event);
    if (self) keyInEditorWasPressed();
}

void QkCellGroupControl::walk(bool forward, const Event& event) {
    if (!m_editingCell) {
        if (cellCount() > 1) startEditingForCell(cellAtIndex(0));
        return;
    }
    const auto from = static_cast<std::size_t>(indexOfCell(m_editingCell.get()));
    const auto next = nextInRow(from, forward, m_cells.size(), [this](std::size_t index) {
        const Cell& cell = *m_cells[index];
        return isEditableCell(cell) && dynamic_cast<const QkNumberEditorCell*>(&cell) != nullptr;
    });
    if (!next) return Control::keyDown(event);
    startEditingForCell(m_cells[*next].get());
}

bool QkCellGroupControl::wantsKey(const Event& event) const {
    if (!isEnabled()) return false;
    const char16_t key = event.plainKey();
    const bool walks = key == kLeftArrowCharacter || key == kRightArrowCharacter;
    if (walks && cellCount() > 1) return true;
    if (m_editingCell) return m_editingCell->wantsKey(event);
    return key == kReturnCharacter || key == kEnterCharacter;
}

// Drawing, archive and accessibility.

void QkCellGroupControl::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    if (m_drawsBackground && m_backgroundColor) fillAligned(canvas, bounds(), *m_backgroundColor);
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        if (needsToDrawRect(m_cellFrames[i]))
            m_cells[i]->drawWithFrame(canvas, m_cellFrames[i], *this);
    }
}

void QkCellGroupControl::encodeWithCoder(KeyedCoder& coder) const {
    Control::encodeWithCoder(coder);
    coder.encodeColor(m_backgroundColor, kBackground);
    coder.encodeColor(m_editBackgroundColor, kEditBackground);
    coder.encodeColor(m_textColor, kText);
    coder.encodeColor(m_editTextColor, kEditText);
    coder.encodeBool(m_drawsBackground, kDrawsBackground);
    coder.encodeBool(m_disableFontSmoothing, kNoSmoothing);
}

void QkCellGroupControl::decodeWithCoder(const KeyedCoder& coder) {
    const WeakPointer<Control> self(this);
    Control::decodeWithCoder(coder);
    if (!self) return;
    setBackgroundColor(coder.decodeColor(kBackground, m_backgroundColor));
    setEditBackgroundColor(coder.decodeColor(kEditBackground, m_editBackgroundColor));
    setTextColor(coder.decodeColor(kText, m_textColor));
    setEditTextColor(coder.decodeColor(kEditText, m_editTextColor));
    setDrawsBackground(coder.decodeBool(kDrawsBackground, m_drawsBackground));
    setDisablesFontSmoothing(coder.decodeBool(kNoSmoothing, m_disableFontSmoothing));
}

std::vector<AccessibilityElement*> QkCellGroupControl::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children = Control::accessibilityChildren();
    for (const auto& cell : m_cells)
        children.push_back(cell.get());
    return children;
}

}  // namespace veltra
