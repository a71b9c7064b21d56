// SPDX-License-Identifier: MIT
#include "veltra/ui/cell.h"

#include "veltra/base/number_text.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/cell_tracking.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr std::string_view kValueKey = "CELL_VALUE";
constexpr std::string_view kEnabledKey = "CELL_ENABLED";

// The number at the beginning of a text, 0 without one; independent of the locale.
double leadingNumber(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n");
    if (start == std::string_view::npos) return 0.0;
    text.remove_prefix(start);
    if (text.front() == '+') text.remove_prefix(1);
    double number = 0.0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::general);
    return error == std::errc() ? number : 0.0;
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

void Cell::encodeWithCoder(KeyedCoder& coder) const {
    coder.encodeString(stringValue(), kValueKey);
    coder.encodeBool(m_isEnabled, kEnabledKey);
}

void Cell::decodeWithCoder(const KeyedCoder& coder) {
    setStringValue(coder.decodeString(kValueKey, stringValue()));
    setEnabled(coder.decodeBool(kEnabledKey, m_isEnabled));
}

}  // namespace veltra
