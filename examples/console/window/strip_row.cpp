// SPDX-License-Identifier: MIT
#include "strip_row.h"

#include "card_layout.h"
#include "veltra/platform/clock.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kLeastForDrop = 120.0F;  // points of room
constexpr float kDragBegins = 6.0F;      // points

}  // namespace

StripRow::StripRow(ConsoleDelegate& delegate)
    : m_delegate(delegate),
      m_drop(addSubview(std::make_unique<DropView>(delegate))),
      m_glideTimer(1.0 / 60.0, this, action<&StripRow::glideOn>(), nullptr) {
    m_drop.setIsWhole(false);
    m_drop.setHidden(true);
}

bool StripRow::doFit(std::span<const StripState> strips, float width, CardKind kind, int lines) {
    float room = width + kGap;
    for (const StripState& strip : strips) {
        const float needed = StripView::leastWidth(strip.format, kind) + kGap;
        if (needed > room && --lines > 0) room = width + kGap;
        room -= needed;
        if (room < 0.0F) return false;
    }
    return true;
}

float StripRow::leastWidth(int index) const {
    return StripView::leastWidth(m_strips[static_cast<std::size_t>(index)]->format(), m_narrowest);
}

// How many fit into one line, beginning with that one; at least one.
int StripRow::countOfLine(int first) const {
    float room = bounds().size.width + kGap;
    int count = 0;
    for (int i = first; i < static_cast<int>(m_strips.size()); ++i, ++count) {
        room -= leastWidth(i) + kGap;
        if (room < 0.0F) return std::max(count, 1);
    }
    return count;
}

// The same, into all lines.
int StripRow::countFrom(int first) const {
    int end = first;
    for (int line = 0; line < m_lines; ++line)
        end += countOfLine(end);
    return end - first;
}

// From which on all fit.
int StripRow::lastFirst() const {
    const auto count = static_cast<int>(m_strips.size());
    int first = std::max(count - 1, 0);
    while (first > 0 && countFrom(first - 1) == count - first + 1)
        --first;
    return first;
}

// The nearest with which that one is in sight.
int StripRow::firstToSee(int index) const {
    int first = std::min(m_first, index);
    while (first < index && first + countFrom(first) <= index)
        ++first;
    return first;
}

void StripRow::setNarrowest(CardKind kind) {
    if (kind == m_narrowest) return;
    m_narrowest = kind;
    layOut();
}

void StripRow::setLines(int lines) {
    if (lines == m_lines) return;
    m_lines = lines;
    layOut();
}

void StripRow::setMeterKind(MeterKind kind) {
    m_meterKind = kind;
    for (StripView* const strip : m_strips)
        strip->setMeterKind(kind);
}

void StripRow::glideTo(int first) {
    if (m_strips.empty() || m_lines > 1) return scrollTo(first);
    const View& one = *m_strips.front();
    const float before = one.frame().minX();
    scrollTo(first);
    m_shiftFrom = m_scrollTime > 0.0 ? before - one.frame().minX() : 0.0F;
    if (m_shiftFrom == 0.0F) return;
    m_glideBegan = Clocks::current().monotonic().moment();
    m_glideTimer.start();
    glideOn();
}

// Fast at first, then slower.
void StripRow::glideOn() {
    const double gone = (Clocks::current().monotonic().moment() - m_glideBegan).seconds();
    const double left = std::clamp(1.0 - gone / m_scrollTime, 0.0, 1.0);
    m_shift = std::round(m_shiftFrom * static_cast<float>(left * left));
    if (left > 0.0) {
        place();
    } else {
        m_glideTimer.stop();
        layOut();  // a strip on its way out may have been clicked
    }
    if (superview() != nullptr) superview()->setNeedsDisplay();
}

void StripRow::scrollTo(int first) {
    m_shift = 0.0F;
    m_glideTimer.stop();
    const int before = m_first;
    m_first = std::clamp(first, 0, lastFirst());
    place();
    // The keyboard comes along, to the same control.
    if (const StripView* const strip = focused()) {
        const auto at = std::find(m_strips.begin(), m_strips.end(), strip) - m_strips.begin();
        const int heir = std::clamp(static_cast<int>(at), m_first, m_first + m_inSight - 1);
        if (heir != at) m_strips[static_cast<std::size_t>(heir)]->focusPart(strip->focusedPart());
    }
    layOut();  // back, where the keyboard did not come along
    if (m_first != before && superview() != nullptr) superview()->setNeedsDisplay();
}

void StripRow::layOut() {
    m_first = std::clamp(m_first, 0, lastFirst());
    if (const StripView* const strip = focused()) {
        const auto at = std::find(m_strips.begin(), m_strips.end(), strip) - m_strips.begin();
        m_first = firstToSee(static_cast<int>(at));
    }
    place();
}

// Each strip where it stands when m_first leads.
void StripRow::place() {
    m_inSight = countFrom(m_first);
    const Size size = bounds().size;
    const auto lines = static_cast<float>(m_lines);
    // Lines stand on the grid; the last one stands on the foot.
    const float share = (size.height - kGap * (lines - 1.0F)) / lines;
    const float height = m_lines > 1 ? std::floor(share / kGrid) * kGrid : size.height;
    float top = 0.0F;
    float used = 0.0F;
    int end = m_first;
    for (int line = 0; line < m_lines; ++line) {
        const int begin = end;
        end += countOfLine(begin);
        if (line > 0) top = size.height - height;
        used = placeLine(begin, end, top, height);
    }
    float left = m_shift != 0.0F ? used + m_shift : std::max(used, size.width + kGap);
    for (int i = end; i < static_cast<int>(m_strips.size()); ++i) {
        const float width = leastWidth(i);
        m_strips[static_cast<std::size_t>(i)]->setFrame({{left, top}, {width, height}});
        left += width + kGap;
    }
    float right = m_shift - kGap;
    for (int i = m_first - 1; i >= 0; --i) {
        const float width = leastWidth(i);
        m_strips[static_cast<std::size_t>(i)]->setFrame({{right - width, 0.0F}, {width, height}});
        right -= width + kGap;
    }
    const float free = size.width - used;
    m_drop.setHidden(free < kLeastForDrop || m_strips.empty());
    m_drop.setFrame({{used, top}, {std::max(free, 0.0F), height}});
    setNeedsDisplay();
}

// Returns where the next one would stand.
float StripRow::placeLine(int begin, int end, float top, float height) {
    // What is left over goes to all alike, in steps of the grid, up to their maximum.
    float room = bounds().size.width + kGap;
    for (int i = begin; i < end; ++i)
        room -= leastWidth(i) + kGap;
    std::vector<float> more(m_strips.size(), 0.0F);
    for (bool isChanged = true; isChanged && room >= kGrid;) {
        isChanged = false;
        for (int i = begin; i < end && room >= kGrid; ++i) {
            const auto at = static_cast<std::size_t>(i);
            if (leastWidth(i) + more[at] + kGrid > StripView::mostWidth(m_strips[at]->format()))
                continue;
            more[at] += kGrid;
            room -= kGrid;
            isChanged = true;
        }
    }
    float left = 0.0F;
    for (int i = begin; i < end; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const float width = leastWidth(i) + more[at];
        m_strips[at]->setFrame({{left + m_shift, top}, {width, height}});
        left += width + kGap;
    }
    return left;
}

// Returns whether strips have come, gone or moved. The keyboard goes to the right neighbour of one
// that goes.
bool StripRow::match(const ConsoleState& state) {
    const auto keyAt = [&](std::size_t i) { return state.strips[i].key; };
    bool isSame = m_strips.size() == state.strips.size();
    for (std::size_t i = 0; isSame && i < m_strips.size(); ++i)
        isSame = m_strips[i]->key() == keyAt(i);
    if (isSame) return false;

    const StripView* const before = focused();
    const int part = before != nullptr ? before->focusedPart() : -1;
    std::size_t place = 0;  // of the strip with the keyboard
    while (before != nullptr && place < m_strips.size() && m_strips[place] != before)
        ++place;
    const StripKey focusedKey = before != nullptr ? before->key() : 0;

    std::vector<StripView*> old = std::exchange(m_strips, {});
    for (const StripState& strip : state.strips) {
        const auto found = std::find_if(old.begin(), old.end(), [&](const StripView* view) {
            return view->key() == strip.key;
        });
        if (found != old.end()) {
            m_strips.push_back(*found);
            old.erase(found);
        } else {
            m_strips.push_back(&addSubview(std::make_unique<StripView>(strip, m_delegate)));
            m_strips.back()->setMeterKind(m_meterKind);
        }
    }
    orderViews();
    layOut();
    if (part >= 0 && !m_strips.empty()) {
        auto heir = std::find_if(m_strips.begin(), m_strips.end(),
                                 [&](const StripView* view) { return view->key() == focusedKey; });
        if (heir == m_strips.end())
            heir = m_strips.begin() +
                   static_cast<std::ptrdiff_t>(std::min(place, m_strips.size() - 1));
        (*heir)->focusPart(part);
    }
    for (StripView* const view : old) {
        view->setHidden(true);
        view->removeFromSuperview();
    }
    return true;
}

// Tab goes by the order of the views.
void StripRow::orderViews() {
    std::size_t next = 0;
    for (const auto& view : subviews()) {
        if (next < m_strips.size() && view.get() == m_strips[next]) ++next;
    }
    if (next == m_strips.size()) return;
    for (StripView* const view : m_strips) {
        if (auto taken = view->takeFromSuperview()) addSubview(std::move(taken));
    }
}

void StripRow::update(const ConsoleState& state) {
    match(state);
    for (std::size_t i = 0; i < m_strips.size(); ++i)
        m_strips[i]->update(state.strips[i], state);
}

StripView* StripRow::focused() const {
    const auto found = std::find_if(m_strips.begin(), m_strips.end(),
                                    [](const StripView* view) { return view->focusedPart() >= 0; });
    return found != m_strips.end() ? *found : nullptr;
}

bool StripRow::takeKeyboard() {
    constexpr int kMute = 4;
    return !m_strips.empty() && m_strips[static_cast<std::size_t>(m_first)]->focusPart(kMute);
}

bool StripRow::scrollRectToVisible(const Rect& rect) {
    const int index = indexAt(rect.center());
    if (index < 0 || (index >= m_first && index < m_first + m_inSight)) return false;
    glideTo(firstToSee(index));
    return true;
}

void StripRow::scrollWheel(const Event& event) {
    m_wheel += event.deltaX != 0.0F ? event.deltaX : event.deltaY;
    const float notches = std::trunc(m_wheel);
    m_wheel -= notches;
    if (notches != 0.0F) scrollTo(m_first - static_cast<int>(notches));
}

int StripRow::indexAt(Point point) const {
    for (std::size_t i = 0; i < m_strips.size(); ++i) {
        if (pointInRect(point, m_strips[i]->frame())) return static_cast<int>(i);
    }
    return -1;
}

// A card is dragged by its name.

void StripRow::mouseDown(const Event& event) {
    const Point at = locationOf(event);
    const int index = indexAt(at);
    m_dragged = 0;
    m_dropPlace = -1;
    if (index < 0) return;
    StripView& strip = *m_strips[static_cast<std::size_t>(index)];
    if (!strip.isHandle(strip.locationOf(event))) return;
    m_dragged = strip.key();
    m_dragFrom = at;
}

void StripRow::mouseDragged(const Event& event) {
    if (m_dragged == 0) return;
    const auto [x, y] = locationOf(event);
    if (m_dropPlace < 0 && std::hypot(x - m_dragFrom.x, y - m_dragFrom.y) < kDragBegins) return;
    int place = m_first;
    for (int i = m_first; i < m_first + m_inSight; ++i) {
        const Rect& frame = m_strips[static_cast<std::size_t>(i)]->frame();
        const bool isAbove = frame.maxY() <= std::min(y, bounds().size.height - 1.0F);
        const bool isInLine = frame.minY() <= std::max(y, 0.0F);
        if (isAbove || (isInLine && x > frame.center().x)) place = i + 1;
    }
    if (place == m_dropPlace) return;
    m_dropPlace = place;
    if (superview() != nullptr) superview()->setNeedsDisplay();
    setNeedsDisplay();
}

void StripRow::mouseUp(const Event& /*event*/) {
    const StripKey key = std::exchange(m_dragged, 0);
    int place = std::exchange(m_dropPlace, -1);
    if (key == 0 || place < 0) return;
    setNeedsDisplay();
    const auto from = std::find_if(m_strips.begin(), m_strips.end(),
                                   [key](const StripView* view) { return view->key() == key; });
    if (from == m_strips.end()) return;
    if (from - m_strips.begin() < place) --place;  // it leaves its own place
    if (from - m_strips.begin() != place) m_delegate.stripWasMoved(key, place);
}

void StripRow::setHovered(const StripView* strip) {
    const StripKey key = strip != nullptr ? strip->key() : 0;
    if (key == m_hovered) return;
    for (StripView* const each : m_strips)
        each->setHovered(each->key() == key);
    m_hovered = key;
}

void StripRow::mouseMoved(const Event& event) {
    const int index = indexAt(locationOf(event));
    setHovered(index < 0 ? nullptr : m_strips[static_cast<std::size_t>(index)]);
    View::mouseMoved(event);
}

void StripRow::keyDown(const Event& event) {
    const char16_t key = event.plainKey();
    const bool isNext = key == kRightArrowCharacter;
    const StripView* const strip = focused();
    if (strip == nullptr || (!isNext && key != kLeftArrowCharacter)) return View::keyDown(event);
    const auto at = std::find(m_strips.begin(), m_strips.end(), strip) - m_strips.begin();
    const auto next = at + (isNext ? 1 : -1);
    if (next < 0 || next >= static_cast<std::ptrdiff_t>(m_strips.size())) return;
    m_strips[static_cast<std::size_t>(next)]->focusPart(strip->focusedPart());
}

// Where the strip that is being dragged would come.
void StripRow::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    if (m_dropPlace < 0 || m_strips.empty()) return;
    const bool isLast = m_dropPlace >= m_first + m_inSight;
    const Rect& beside =
        m_strips[static_cast<std::size_t>(isLast ? m_dropPlace - 1 : m_dropPlace)]->frame();
    const float x = isLast ? beside.maxX() + kGap * 0.5F : beside.minX() - kGap * 0.5F;
    const float inside = std::clamp(x - 1.0F, 0.0F, bounds().size.width - 2.0F);
    fillAligned(canvas, {{inside, beside.minY()}, {2.0F, beside.size.height}},
                theme(effectiveAppearance()).accent);
}

}  // namespace veltra::console
