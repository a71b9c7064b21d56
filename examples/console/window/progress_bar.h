// How far a file has played.
#pragma once

#include "veltra/platform/ui/view.h"

namespace veltra::console {

// Thread: main.
class ProgressBar final : public View {
public:
    using View::View;

    // 0 to 1; below 0: nobody knows, and the bar stays empty.
    void setProgress(double progress);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    float filledWidth(double progress) const;

    double m_progress = -1.0;
};

}  // namespace veltra::console
