// SPDX-License-Identifier: MIT
#include "veltra/ui/cell.h"

#include "veltra/base/number_text.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/cell_tracking.h"
#include "veltra/ui/control.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/window.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr char kValue[] = "CELL_VALUE";
constexpr char kEnabled[] = "CELL_ENABLED";
constexpr char kEditable[] = "CELL_EDITABLE";
constexpr char kBordered[] = "CELL_BORDERED";
constexpr char kBezeled[] = "CELL_BEZELED";
constexpr char kFont[] = "CELL_FONT";
constexpr char kAlignment[] = "CELL_ALIGNMENT";
constexpr char kSize[] = "CELL_SIZE";
constexpr double kLargest = std::numeric_limits<double>::max();

bool isDigit(char byte) noexcept {
    return byte >= '0' && byte <= '9';
}

// Of a number that no double can hold: whether it is too small rather than too large. Counts the
// digits before the point, or the zeros behind it, and adds the exponent.
bool isTiny(std::string_view text) noexcept {
    const auto digitsAt = [text](std::size_t at, bool onlyZeros) {
        std::size_t end = at;
        while (end < text.size() && (onlyZeros ? text[end] == '0' : isDigit(text[end])))
            ++end;
        return end;
    };
    const std::size_t first = digitsAt(0, true);
    std::size_t end = digitsAt(first, false);
    auto magnitude = static_cast<std::int64_t>(end - first);
    if (end < text.size() && text[end] == '.') {
        const std::size_t behind = end + 1;
        if (magnitude == 0) magnitude -= static_cast<std::int64_t>(digitsAt(behind, true) - behind);
        end = digitsAt(behind, false);
    }
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const bool isNegative = end + 1 < text.size() && text[end + 1] == '-';
        std::int64_t exponent = 0;
        const char* const start = text.data() + end + 1 + (text.substr(end + 1, 1) == "+" ? 1 : 0);
        const auto read = std::from_chars(start, text.data() + text.size(), exponent);
        if (read.ec == std::errc::result_out_of_range) return isNegative;
        magnitude += exponent;
    }
    return magnitude <= 0;
}

// The decimal number at the beginning of a text, 0 without one; independent of the locale.
double leadingNumber(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n");
    if (start == std::string_view::npos) return 0.0;
    text.remove_prefix(start);
    const bool isNegative = text.front() == '-';
    if (isNegative || text.front() == '+') text.remove_prefix(1);
    const std::size_t point = !text.empty() && text.front() == '.' ? 1 : 0;
    if (text.size() <= point || !isDigit(text[point])) return 0.0;
    double number = 0.0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::general);
    if (error != std::errc()) number = isTiny(text) ? 0.0 : kLargest;
    return isNegative ? -number : number;
}

std::int32_t toInteger(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number)) return 0;
    if (number <= Limits::min()) return Limits::min();
    if (number >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(number);
}

}  // namespace

Cell::~Cell() = default;

std::int32_t Cell::intValue() const {
    const auto* integer = std::get_if<std::int32_t>(&m_value);
    return integer != nullptr ? *integer : toInteger(doubleValue());
}

double Cell::doubleValue() const {
    if (const auto* real = std::get_if<double>(&m_value)) return *real;
    if (const auto* integer = std::get_if<std::int32_t>(&m_value)) return *integer;
    return leadingNumber(std::get<std::string>(m_value));
}

std::string Cell::stringValue() const {
    if (const auto* text = std::get_if<std::string>(&m_value)) return *text;
    if (const auto* integer = std::get_if<std::int32_t>(&m_value)) return std::to_string(*integer);
    return std::string(NumberText::shortest(std::get<double>(m_value)).view());
}

void Cell::setValue(Value value) {
    if (m_value == value) return;
    m_value = std::move(value);
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

StyledText Cell::attributedStringValue() const {
    const View* const view = controlView();
    const SystemColor color = m_isEnabled ? SystemColor::Label : SystemColor::DisabledLabel;
    return {stringValue(), m_font,
            view != nullptr ? view->systemColor(color) : systemColor(color, Appearance::Light),
            m_alignment};
}

void Cell::setEnabled(bool isEnabled) {
    if (isEnabled == m_isEnabled) return;
    change(m_isEnabled, isEnabled);
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

void Cell::setHighlighted(bool isHighlighted) {
    change(m_isHighlighted, isHighlighted);
}

void Cell::setBordered(bool isBordered) {
    change(m_isBordered, isBordered);
}

void Cell::setBezeled(bool isBezeled) {
    change(m_isBezeled, isBezeled);
}

void Cell::setFont(const Font& font) {
    change(m_font, font);
}

void Cell::setAlignment(TextAlignment alignment) {
    change(m_alignment, alignment);
}

void Cell::setControlSize(ControlSize size) {
    change(m_controlSize, size);
}

void Cell::setControlView(View* view) noexcept {
    m_controlView = view;
}

void Cell::calculateInternalsFromCellFrame(const Rect& frame, View& controlView) {
    m_cellFrame = frame;
    m_controlView = &controlView;
}

void Cell::setNeedsDisplay() {
    if (m_controlView) m_controlView->setNeedsDisplayInRect(m_cellFrame);
}

void Cell::drawWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    calculateInternalsFromCellFrame(frame, view);
    const Canvas::StateScope scope(canvas);
    canvas.clipTo(frame);  // one rectangle, however many are dirty: images are then plain copies
    if (m_isBordered || m_isBezeled) {
        const Path outline = Path::roundedRect(frame.inset(0.5F, 0.5F), m_isBezeled ? 4.0F : 0.0F);
        canvas.strokePath(outline, view.systemColor(SystemColor::Separator), 1.0F);
    }
    drawInteriorWithFrame(canvas, frame, view);
}

void Cell::drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& /*view*/) {
    canvas.drawText(attributedStringValue(), frame);
}

Size Cell::cellSize() const {
    constexpr float kLarge = 10000.0F;
    return cellSizeForBounds({{}, {kLarge, kLarge}});
}

Size Cell::cellSizeForBounds(const Rect& bounds) const {
    const Size text = attributedStringValue().size();
    return {std::min(std::ceil(text.width), bounds.size.width),
            std::min(std::ceil(text.height), bounds.size.height)};
}

bool Cell::trackMouse(const Event& event, const Rect& frame, View& view, bool untilMouseUp) {
    const WeakPointer<Window> window(view.window());
    if (!window) return false;
    CellTracking tracking;
    if (!tracking.press(*this, view, frame, untilMouseUp, event)) return false;
    const EventMask mask =
        EventType::LeftMouseUp | EventType::LeftMouseDragged | EventType::ScrollWheel;
    while (tracking.isActive()) {
        if (!window) return false;
        tracking.handle(window->nextEvent(mask));
    }
    return tracking.hasSucceeded();
}

EventMask Cell::sendActionOn(EventMask mask) noexcept {
    return std::exchange(m_sendActionMask, mask);
}

AccessibilityElement* Cell::accessibilityParent() const {
    return controlView();
}

std::string Cell::accessibilityName() const {
    const std::string own = AccessibilityElement::accessibilityName();
    const auto* const control = dynamic_cast<const Control*>(controlView());
    const bool isItsCell = control != nullptr && control->cell() == this;
    return own.empty() && isItsCell ? control->accessibilityName() : own;
}

bool Cell::accessibilityIsFocused() const {
    const auto* const control = dynamic_cast<const Control*>(controlView());
    return control != nullptr && control->cell() == this && control->hasKeyboard();
}

void Cell::sendAction() {
    if (auto* const control = dynamic_cast<Control*>(controlView())) control->sendAction();
}

void Cell::encodeWithCoder(KeyedCoder& coder) const {
    std::visit([&coder](const auto& value) { coder.encodeValue(value, kValue); }, m_value);
    coder.encodeBool(m_isEnabled, kEnabled);
    coder.encodeBool(m_isEditable, kEditable);
    coder.encodeBool(m_isBordered, kBordered);
    coder.encodeBool(m_isBezeled, kBezeled);
    coder.encodeFont(m_font, kFont);
    coder.encodeInt64(static_cast<int>(m_alignment), kAlignment);
    coder.encodeInt64(static_cast<int>(m_controlSize), kSize);
}

void Cell::decodeWithCoder(const KeyedCoder& coder) {
    const PropertyValue value = coder.decodeValue(kValue);
    if (value.kind() == PropertyValue::Kind::Integer) {
        setIntValue(toInteger(value.asReal()));
    } else if (value.kind() == PropertyValue::Kind::Real) {
        setDoubleValue(value.asReal());
    } else if (value.kind() == PropertyValue::Kind::String) {
        setStringValue(value.asString());
    }
    const WeakPointer<Cell> self(this);
    setEnabled(coder.decodeBool(kEnabled, m_isEnabled));  // may end a run, whose observers may act
    if (!self) return;
    setEditable(coder.decodeBool(kEditable, m_isEditable));
    setBordered(coder.decodeBool(kBordered, m_isBordered));
    setBezeled(coder.decodeBool(kBezeled, m_isBezeled));
    setFont(coder.decodeFont(kFont, m_font));
    setAlignment(coder.decodeEnum(kAlignment, m_alignment, TextAlignment::Right));
    setControlSize(coder.decodeEnum(kSize, m_controlSize, ControlSize::Mini));
}

}  // namespace veltra
