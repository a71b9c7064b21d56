#include "progress_bar.h"

#include "veltra/platform/ui/canvas.h"
#include "veltra/platform/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

// In whole device pixels.
float ProgressBar::filledWidth(double progress) const {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const float part = static_cast<float>(std::clamp(progress, 0.0, 1.0));
    return std::round(part * bounds().size.width * scale) / scale;
}

void ProgressBar::setProgress(double progress) {
    const bool isSeen = filledWidth(progress) != filledWidth(m_progress);
    m_progress = progress;
    if (isSeen) setNeedsDisplay();
}

void ProgressBar::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const float radius = bounds().size.height * 0.5F;
    canvas.fillPath(Path::roundedRect(bounds(), radius), systemColor(SystemColor::Separator));
    Rect filled = bounds();
    filled.size.width = filledWidth(m_progress);
    if (filled.isEmpty()) return;
    const Canvas::StateScope scope(canvas);
    canvas.clipTo(filled);
    canvas.fillPath(Path::roundedRect(bounds(), radius), systemColor(SystemColor::Accent));
}

}  // namespace veltra::console
