// SPDX-License-Identifier: MIT
#include "waveform_view.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kOnsetRoom = 6.0F;  // points between onsets, on average
constexpr float kOnsetHeight = 4.0F;

}  // namespace

void WaveformView::setOverview(std::shared_ptr<const Overview> overview) {
    if (overview == nullptr || overview == m_overview) return;
    m_overview = std::move(overview);
    m_peak = 0.0F;
    for (const Overview::Column& column : m_overview->columns)
        m_peak = std::max({m_peak, column.high, -column.low});
    thinOut();
    setNeedsDisplay();
}

void WaveformView::thinOut() {
    m_onsets = m_overview != nullptr ? m_overview->onsets : CTransients();
    m_onsets.ThinOutToSizeAndSortByPos(
        static_cast<unsigned long>(bounds().size.width / kOnsetRoom));
}

// In whole device pixels.
float WaveformView::playedWidth() const {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const float part = static_cast<float>(std::clamp(m_progress, 0.0, 1.0));
    return std::round(part * bounds().size.width * scale) / scale;
}

void WaveformView::setProgress(double progress) {
    const float before = playedWidth();
    m_progress = progress;
    const float now = playedWidth();
    if (now == before) return;
    setNeedsDisplayInRect(
        {{std::min(before, now), 0.0F}, {std::fabs(now - before), bounds().size.height}});
}

void WaveformView::drawRect(Canvas& canvas, const Rect& dirty) {
    const Color played = systemColor(SystemColor::Accent);
    const Color ahead = systemColor(SystemColor::Grid);
    const float pixel = 1.0F / canvas.scale();
    const float middle = std::round(bounds().size.height * 0.5F * canvas.scale()) * pixel;
    const float border = playedWidth();
    const float gain = m_peak > 0.0F ? 1.0F / m_peak : 0.0F;
    const std::size_t columns = m_overview != nullptr ? m_overview->columns.size() : 0;
    const auto first = static_cast<int>(std::floor(dirty.minX() * canvas.scale()));
    const float end = std::min(dirty.maxX(), bounds().size.width) * canvas.scale();
    for (int device = first; static_cast<float>(device) < end; ++device) {
        const float x = static_cast<float>(device) * pixel;
        // All columns that share this pixel, as its highest and lowest.
        const auto columnAt = [this, columns](float place) {
            const float part = std::clamp(place / bounds().size.width, 0.0F, 1.0F);
            return static_cast<std::size_t>(part * static_cast<float>(columns));
        };
        Overview::Column column;
        for (std::size_t i = columnAt(x); i < std::max(columnAt(x + pixel), columnAt(x) + 1); ++i) {
            if (i >= columns) break;
            column.low = std::min(column.low, m_overview->columns[i].low);
            column.high = std::max(column.high, m_overview->columns[i].high);
        }
        const float room = middle - kOnsetHeight - 1.0F;
        const float top = std::round(column.high * gain * room * canvas.scale()) * pixel;
        const float bottom = std::round(column.low * gain * room * canvas.scale()) * pixel;
        canvas.fillRect({{x, middle - top}, {pixel, std::max(top - bottom, pixel)}},
                        x < border ? played : ahead);
    }
    drawOnsets(canvas);
}

// Small marks above the waveform, the stronger the clearer.
void WaveformView::drawOnsets(Canvas& canvas) const {
    if (m_overview == nullptr || m_overview->frames == 0) return;
    const float pixel = 1.0F / canvas.scale();
    for (const CTransient& onset : m_onsets) {
        const double part =
            static_cast<double>(onset.pos) / static_cast<double>(m_overview->frames);
        const Rect mark{{static_cast<float>(part) * bounds().size.width, 0.0F},
                        {pixel, kOnsetHeight}};
        if (!needsToDrawRect(mark)) continue;
        const Color color = systemColor(SystemColor::Label);
        canvas.fillRect(canvas.alignedToDevice(mark),
                        color.withAlpha(color.alpha * onset.visibleweight));
    }
}

std::string WaveformView::accessibilityName() const {
    if (m_overview == nullptr) return "Waveform";
    const std::size_t count = m_overview->onsets.size();
    return "Waveform with " + std::to_string(count) + (count == 1 ? " onset" : " onsets");
}

}  // namespace veltra::console
