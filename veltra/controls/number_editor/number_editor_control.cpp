// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_control.h"

#include "veltra/controls/number_editor/font_fitting.h"
#include "veltra/controls/number_editor/group_text.h"
#include "veltra/ui/application.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/port.h"
#include "veltra/ui/theme.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <utility>

namespace veltra {

namespace {

constexpr double kLongClick = 0.6;  // seconds
constexpr float kFontSize = 12.0F;
constexpr float kPlainInset = 1.0F;
constexpr float kLookInset = 4.0F;  // room for the ground of editing
constexpr char kPlaceHolder[] = ".00";
constexpr char kFirstPlaceHolder[] = "000";
constexpr char kSeparator[] = "/";

constexpr char kValue[] = "NUMBEREDITOR_VALUE";
constexpr char kContinuous[] = "NUMBEREDITOR_CONTINUOUS";
constexpr char kCustomWidths[] = "NUMBEREDITOR_CUSTOMSEPARATORWIDTHS";
constexpr char kShadowColor[] = "NUMBEREDITOR_SHADOWCOLOR";

CellFactory& classOfNewCells() noexcept {
    static CellFactory s_cellClass = cellFactory<QkNumberEditorCell>();
    return s_cellClass;
}

std::unique_ptr<QkNumberEditorCell> makeCell(const CellFactory& cells, std::string_view text) {
    std::unique_ptr<Cell> cell = cells.make(text);
    auto* const editor = dynamic_cast<QkNumberEditorCell*>(cell.get());
    if (editor == nullptr) return std::make_unique<QkNumberEditorCell>(text);
    static_cast<void>(cell.release());
    return std::unique_ptr<QkNumberEditorCell>(editor);
}

// The low half of the bits, with its sign.
std::int32_t lowHalf(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

bool isCommand(const Event& event, char16_t key) noexcept {
    constexpr ModifierFlags kOthers = kShiftKeyMask | kAlternateKeyMask | kCommandKeyMask;
    return event.modifierFlags.contains(kControlKeyMask) &&
           (event.modifierFlags & kOthers).isEmpty() &&
           event.charactersIgnoringModifiers == std::u16string(1, key);
}

}  // namespace

DfNumberEditorControl::DfNumberEditorControl(const Rect& frame)
    : QkCellGroupControl(frame),
      m_longClickTimer(kLongClick, this, veltra::action<&DfNumberEditorControl::longClickTimeOut>(),
                       nullptr, false),
      m_cellClass(defaultCellClass()) {
    ____addEditableCellWithText({});
    setAlignment(TextAlignment::Right);
    setFont(Font::userFont(kFontSize));
    editorCellAtIndex(0)->setPlaceHolderString(kFirstPlaceHolder);
    m_isReady = true;
    recalculateFontSize();
}

DfNumberEditorControl::~DfNumberEditorControl() {
    cutAnchor();
}

void DfNumberEditorControl::setDefaultCellClass(const CellFactory& cells) {
    classOfNewCells() = cells;
}

CellFactory DfNumberEditorControl::defaultCellClass() {
    return classOfNewCells();
}

// The value.

void DfNumberEditorControl::setValue(std::int64_t value) {
    m_value = value;
    calculateCellValuesFromValue();
}

void DfNumberEditorControl::setDelegate(DfNumberEditorControlDelegate* delegate) {
    QkCellGroupControl::setDelegate(delegate);
    if (delegate != nullptr) calculateCellValuesFromValue();
}

void DfNumberEditorControl::calculateCellValuesFromValue() {
    const WeakPointer<View> self(this);
    std::optional<std::vector<std::int32_t>> numbers;
    if (DfNumberEditorControlDelegate* const asked = delegate())
        numbers = asked->calculateCellValuesFromValue(*this, m_value);
    if (!self) return;
    if (!numbers) numbers = {lowHalf(m_value)};
    for (std::size_t i = 0; i < numbers->size(); ++i) {
        QkNumberEditorCell* const cell = editorCellAtIndex(static_cast<std::int32_t>(i));
        if (cell == nullptr) return;
        cell->forgetTypedDigits();
        cell->setIntValue((*numbers)[i]);
    }
}

std::int64_t DfNumberEditorControl::calculateValueFromCellValues() {
    const QkNumberEditorCell* const first = editorCellAtIndex(0);
    const std::int64_t own = first != nullptr ? first->intValue() : 0;
    DfNumberEditorControlDelegate* const asked = delegate();
    if (asked == nullptr) return own;
    return asked->calculateValueFromCellValues(*this, editorCellValues()).value_or(own);
}

void DfNumberEditorControl::valueOfCellChanged(QkNumberEditorCell& cell) {
    if (DfNumberEditorControlDelegate* const told = delegate())
        told->valueOfCellChanged(*this, cell);
}

void DfNumberEditorControl::cellContentDidChange(QkNumberEditorCell& cell) {
    const WeakPointer<View> self(this);
    valueOfCellChanged(cell);
    if (self) finishChange();
}

void DfNumberEditorControl::finishChange() {
    const WeakPointer<View> self(this);
    const std::int64_t joined = calculateValueFromCellValues();
    if (!self) return;
    setValue(joined);
    if (!self) return;
    if (!m_sendActionContinuous && mouseIsDown()) {
        m_needsToSendActionWhenMouseButtonGoesUp = true;
        return;
    }
    sendAction();
}

bool DfNumberEditorControl::sendAction() {
    const WeakPointer<View> self(this);
    const bool isTaken = Control::sendAction();
    if (self) updateOldValue();
    return isTaken;
}

// Groups.

void DfNumberEditorControl::setEditorCellCount(std::int32_t count) {
    removeAllCells();
    for (std::int32_t i = 0; i < count; ++i) {
        if (i > 0) ____addSeparatorCell(kSeparator);
        ____addEditableCellWithText({});
        editorCellAtIndex(i)->setPlaceHolderString(kPlaceHolder);
    }
    layOut();
}

void DfNumberEditorControl::addMadeCell(std::string_view text, bool isEditable) {
    std::unique_ptr<QkNumberEditorCell> cell = makeCell(m_cellClass, text);
    cell->setEditable(isEditable);
    if (isEditable) cell->setIntValue(0);
    if (!isEditable) cell->setHorizontalTextInsets(0.0F);
    cell->setScrollable(false);
    cell->setWraps(false);
    addCell(std::move(cell), 0.0F);
}

void DfNumberEditorControl::____addSeparatorCell(std::string_view text) {
    addMadeCell(text, false);
}

void DfNumberEditorControl::____addEditableCellWithText(std::string_view text) {
    addMadeCell(text, true);
}

void DfNumberEditorControl::setUpAddedCellAttributes(Cell& cell) {
    QkCellGroupControl::setUpAddedCellAttributes(cell);
    cell.setBezeled(false);
    cell.setBordered(false);
    if (!cell.isEditable()) cell.setAlignment(TextAlignment::Center);
    auto* const editor = dynamic_cast<QkNumberEditorCell*>(&cell);
    if (editor == nullptr) return;
    if (cell.isEditable()) editor->setShadowEightColor(m_shadowEightColor);
    editor->setDrawsBackground(false);
    editor->setLook(m_look);
    if (m_look != NumberEditorLook::Plain && cell.isEditable())
        editor->setHorizontalTextInsets(kLookInset);
    editor->setTarget(this);
    editor->setAction(veltra::action<&DfNumberEditorControl::cellContentDidChange>());
}

QkNumberEditorCell* DfNumberEditorControl::editorCellAtIndex(std::int32_t index) const noexcept {
    if (index < 0 || index >= editorCellCount()) return nullptr;
    return dynamic_cast<QkNumberEditorCell*>(cellAtIndex(2 * index));
}

QkNumberEditorCell* DfNumberEditorControl::separatorCellAtIndex(std::int32_t index) const noexcept {
    if (index < 0 || index >= separatorCellCount()) return nullptr;
    return dynamic_cast<QkNumberEditorCell*>(cellAtIndex(2 * index + 1));
}

std::vector<std::int32_t> DfNumberEditorControl::editorCellValues() const {
    std::vector<std::int32_t> values;
    values.reserve(static_cast<std::size_t>(editorCellCount()));
    for (std::int32_t i = 0; i < editorCellCount(); ++i)
        values.push_back(cellAtIndex(2 * i)->intValue());
    return values;
}

void DfNumberEditorControl::setMaxEditStringLenOfEditorCellAtIndex(std::uint32_t digits,
                                                                   std::int32_t index) {
    if (QkNumberEditorCell* const cell = editorCellAtIndex(index))
        cell->setMaxEditStringLen(digits);
}

std::uint32_t DfNumberEditorControl::maxEditStringLenOfEditorCellAtIndex(std::int32_t index) const {
    const QkNumberEditorCell* const cell = editorCellAtIndex(index);
    return cell != nullptr ? cell->maxEditStringLen() : 0;
}

void DfNumberEditorControl::setPlaceHolderStringOfEditorCellAtIndex(std::string_view text,
                                                                    std::int32_t index) {
    QkNumberEditorCell* const cell = editorCellAtIndex(index);
    if (cell == nullptr) return;
    cell->setPlaceHolderString(text);
    layOut();
}

std::string DfNumberEditorControl::placeHolderStringOfEditorCellAtIndex(std::int32_t index) const {
    const QkNumberEditorCell* const cell = editorCellAtIndex(index);
    return cell != nullptr ? cell->placeHolderString() : std::string();
}

void DfNumberEditorControl::setLeadingZerosOfEditorCellAtIndex(std::uint32_t places,
                                                               std::int32_t index) {
    if (QkNumberEditorCell* const cell = editorCellAtIndex(index)) cell->setLeadingZeros(places);
}

void DfNumberEditorControl::setShadowEightsOfEditorCellAtIndex(std::uint32_t count,
                                                               std::int32_t index) {
    if (QkNumberEditorCell* const cell = editorCellAtIndex(index)) cell->setShadowEights(count);
}

void DfNumberEditorControl::setStringOfSeparatorCellAtIndex(std::string_view text,
                                                            std::int32_t index) {
    QkNumberEditorCell* const cell = separatorCellAtIndex(index);
    if (cell == nullptr) return;
    cell->setStringValue(text);
    layOut();
}

std::string DfNumberEditorControl::stringOfSeparatorCellAtIndex(std::int32_t index) const {
    const QkNumberEditorCell* const cell = separatorCellAtIndex(index);
    return cell != nullptr ? cell->stringValue() : std::string();
}

void DfNumberEditorControl::setWidthOfSeparatorCellAtIndex(float width, std::int32_t index) {
    if (separatorCellAtIndex(index) == nullptr) return;
    setWidthOfCellAtIndex(width, 2 * index + 1);
    recalculateCellPositions();
    if (m_useCustomSeparatorWidths) layOut();
}

float DfNumberEditorControl::widthOfSeparatorCellAtIndex(std::int32_t index) const {
    return separatorCellAtIndex(index) != nullptr ? frameOfCellAtIndex(2 * index + 1).size.width
                                                  : 0.0F;
}

void DfNumberEditorControl::setUseCustomSeparatorWidths(bool uses) {
    if (uses == m_useCustomSeparatorWidths) return;
    m_useCustomSeparatorWidths = uses;
    layOut();
}

void DfNumberEditorControl::setShadowEightColor(const MaybeColor& color) {
    m_shadowEightColor = color;
    forEachEditorCell([&](QkNumberEditorCell& cell) { cell.setShadowEightColor(color); });
}

void DfNumberEditorControl::setLook(NumberEditorLook look, float fontSize) {
    m_look = look;
    const float inset = look == NumberEditorLook::Plain ? kPlainInset : kLookInset;
    forEachEditorCell([&](QkNumberEditorCell& cell) {
        cell.setLook(look);
        if (cell.isEditable()) cell.setHorizontalTextInsets(inset);
    });
    if (fontSize > 0.0F) {
        m_fitsFontSize = false;
        setFont(themeFont(fontSize, FontWeight::Medium));
    }
    layOut();
}

void DfNumberEditorControl::setDrawsBackground(bool draws) {
    keepDrawsBackground(draws);
}

// Layout.

void DfNumberEditorControl::layOut() {
    if (!m_isReady) return;
    if (m_fitsFontSize) return recalculateFontSize();
    recalculateCellSizes();
    setNeedsDisplay();
}

void DfNumberEditorControl::setFitsFontSize(bool fits) {
    m_fitsFontSize = fits;
    layOut();
}

void DfNumberEditorControl::frameDidChange() {
    QkCellGroupControl::frameDidChange();
    layOut();
}

void DfNumberEditorControl::recalculateFontSize() {
    FontFitting fitting{
        .width = bounds().size.width, .insets = 0.0F, .strings = {}, .font = font()};
    const auto add = [&fitting](const QkNumberEditorCell* cell, const std::string& text) {
        if (cell == nullptr) return;  // a cell of another class, which somebody has added
        fitting.insets += cell->horizontalTextInsetSum();
        fitting.strings.push_back(text);
    };
    for (std::int32_t i = 0; i < separatorCellCount(); ++i) {
        if (m_useCustomSeparatorWidths) {
            fitting.width -= widthOfSeparatorCellAtIndex(i);
        } else {
            add(separatorCellAtIndex(i), stringOfSeparatorCellAtIndex(i));
        }
    }
    for (std::int32_t i = 0; i < editorCellCount(); ++i)
        add(editorCellAtIndex(i), placeHolderStringOfEditorCellAtIndex(i));
    setFont(fittedFont(fitting));
    recalculateCellSizes();
    setNeedsDisplay();
}

void DfNumberEditorControl::recalculateCellSizes() {
    if (cellCount() == 1) return setFrameOfCellAtIndex(bounds(), 0);
    for (std::int32_t i = 0; i < cellCount(); ++i) {
        const bool keepsWidth = m_useCustomSeparatorWidths && !cellAtIndex(i)->isEditable();
        const float width =
            keepsWidth ? frameOfCellAtIndex(i).size.width : cellAtIndex(i)->cellSize().width;
        setFrameOfCellAtIndex({{frameOfCellAtIndex(i).minX(), 0.0F}, {width, bounds().size.height}},
                              i);
    }
    recalculateCellPositions();
}

void DfNumberEditorControl::adjustCellsAndControlSizeToFontSize(bool resizesControl) {
    float needed = 0.0F;
    for (std::int32_t i = 0; i < cellCount(); ++i) {
        setWidthOfCellAtIndex(cellAtIndex(i)->cellSize().width, i);
        needed += frameOfCellAtIndex(i).size.width;
    }
    recalculateCellPositions();
    if (resizesControl) {
        const bool fits = std::exchange(m_fitsFontSize, false);
        setFrameSize({needed, bounds().size.height});
        m_fitsFontSize = fits;
    }
    setNeedsDisplay();
}

// The pointer.

void DfNumberEditorControl::mouseButtonWentDown() {
    m_needsToSendActionWhenMouseButtonGoesUp = false;
    m_longClickTimer.stop();
    if (m_longClickAction && isEnabled()) m_longClickTimer.start();
}

void DfNumberEditorControl::mouseButtonWentUp() {
    m_longClickTimer.stop();
    const bool isPending = std::exchange(m_needsToSendActionWhenMouseButtonGoesUp, false);
    if (isPending && mouseTrackingIsActive()) sendAction();
}

void DfNumberEditorControl::longClickTimeOut() {
    const WeakPointer<View> self(this);
    const Event* const current = window() != nullptr ? window()->currentEvent() : nullptr;
    mouseUp(current != nullptr ? Event(*current) : Event());
    if (self) Control::sendAction(m_longClickAction, target());
}

void DfNumberEditorControl::viewDidMoveToWindow() {
    if (window() == nullptr) m_longClickTimer.stop();
    QkCellGroupControl::viewDidMoveToWindow();
}

Cursor DfNumberEditorControl::cursorAt(Point point) const {
    if (m_look == NumberEditorLook::Plain || !isEnabled()) return Cursor::Arrow;
    for (std::int32_t i = 0; i < editorCellCount(); ++i) {
        if (pointInRect(point, frameOfCellAtIndex(2 * i))) return Cursor::ResizeUpDown;
    }
    return Cursor::Arrow;
}

void DfNumberEditorControl::setEnabled(bool isEnabled) {
    const WeakPointer<View> self(this);
    if (!isEnabled) m_longClickTimer.stop();
    QkCellGroupControl::setEnabled(isEnabled);
    if (self) setNeedsDisplay();
}

// Keys and the clipboard.

bool DfNumberEditorControl::isSeparatorKey(char16_t key) const {
    if (!m_separatorsLead || editingCell() == nullptr) return false;
    if (key == u'.' || key == u',') return true;
    for (std::int32_t i = 0; i < separatorCellCount(); ++i) {
        const std::string text = stringOfSeparatorCellAtIndex(i);
        const bool isDigit = key >= u'0' && key <= u'9';  // typed, whatever the separators are
        if (key > u' ' && key < 0x7F && !isDigit &&
            text.find(static_cast<char>(key)) != std::string::npos)
            return true;
    }
    return false;
}

void DfNumberEditorControl::keyDown(const Event& event) {
    if (m_usesClipboard && isCommand(event, u'c')) return copy();
    if (m_usesClipboard && isCommand(event, u'v')) return paste();
    if (isSeparatorKey(event.plainKey())) {
        const std::int32_t next = indexOfCell(editingCell()) / 2 + 1;
        return startEditingForCell(editorCellAtIndex(next));
    }
    QkCellGroupControl::keyDown(event);
}

bool DfNumberEditorControl::wantsKey(const Event& event) const {
    const bool isClipboard = isCommand(event, u'c') || isCommand(event, u'v');
    if (m_usesClipboard && isClipboard && isEnabled()) return true;
    return isSeparatorKey(event.plainKey()) || QkCellGroupControl::wantsKey(event);
}

std::string DfNumberEditorControl::valueText() const {
    std::string text;
    for (std::int32_t i = 0; i < cellCount(); ++i) {
        const auto* const cell = dynamic_cast<const QkNumberEditorCell*>(cellAtIndex(i));
        if (cell == nullptr) continue;
        text += cell->isEditable() ? zeroPadded(cell->intValue(), cell->leadingZeros())
                                   : cell->stringValue();
    }
    return text;
}

void DfNumberEditorControl::copy() const {
    UiPort::current().setClipboardText(valueText());
}

void DfNumberEditorControl::paste() {
    if (!isEnabled()) return;
    const std::string text = UiPort::current().clipboardText();
    const auto numbers = groupsInText(text, static_cast<std::size_t>(editorCellCount()));
    if (!numbers) return;
    const WeakPointer<View> self(this);
    const std::vector<std::int32_t> before = editorCellValues();
    for (std::size_t i = 0; i < numbers->size(); ++i) {
        QkNumberEditorCell* const cell = editorCellAtIndex(static_cast<std::int32_t>(i));
        if (cell == nullptr) continue;
        cell->forgetTypedDigits();
        cell->setIntValue((*numbers)[i]);
    }
    for (std::size_t i = 0; i < numbers->size(); ++i) {
        QkNumberEditorCell* const cell = editorCellAtIndex(static_cast<std::int32_t>(i));
        if (cell != nullptr && (*numbers)[i] != before[i]) valueOfCellChanged(*cell);
        if (!self) return;
    }
    finishChange();
}

std::optional<View::FocusShape> DfNumberEditorControl::focusShape() const {
    return m_focusShape ? m_focusShape : QkCellGroupControl::focusShape();
}

// Drawing and archive.

void DfNumberEditorControl::drawRect(Canvas& canvas, const Rect& dirty) {
    if (isEnabled()) QkCellGroupControl::drawRect(canvas, dirty);
}

void DfNumberEditorControl::encodeWithCoder(KeyedCoder& coder) const {
    QkCellGroupControl::encodeWithCoder(coder);
    coder.encodeInt64(m_value, kValue);
    coder.encodeBool(m_sendActionContinuous, kContinuous);
    coder.encodeBool(m_useCustomSeparatorWidths, kCustomWidths);
    coder.encodeColor(m_shadowEightColor, kShadowColor);
}

void DfNumberEditorControl::decodeWithCoder(const KeyedCoder& coder) {
    const WeakPointer<Control> self(this);
    QkCellGroupControl::decodeWithCoder(coder);
    if (!self) return;
    if (coder.contains(kValue)) m_value = lowHalf(coder.decodeInt64(kValue));
    m_sendActionContinuous = coder.decodeBool(kContinuous, m_sendActionContinuous);
    m_useCustomSeparatorWidths = coder.decodeBool(kCustomWidths, m_useCustomSeparatorWidths);
    setShadowEightColor(coder.decodeColor(kShadowColor, m_shadowEightColor));
}

}  // namespace veltra
