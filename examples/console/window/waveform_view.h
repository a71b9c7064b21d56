// SPDX-License-Identifier: MIT
// The waveform of a file with its onsets, coloured as far as it has played.
#pragma once

#include "../overview.h"
#include "veltra/ui/view.h"

#include <memory>

namespace veltra::console {

// Thread: main.
class WaveformView final : public View {
public:
    using View::View;

    // Null: not known yet, and only a line shows how far the file has played. The waveform is drawn
    // as high as there is room, however quiet the file is.
    void setOverview(std::shared_ptr<const Overview> overview);

    // How far the file has played, 0 to 1; below 0: nobody knows.
    void setProgress(double progress);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::StaticText; }
    std::string accessibilityName() const override;

protected:
    void frameDidChange() override { thinOut(); }

private:
    void thinOut();
    float playedWidth() const;
    void drawOnsets(Canvas& canvas) const;

    std::shared_ptr<const Overview> m_overview;
    float m_peak = 0.0F;
    CTransients m_onsets;  // as many as have room
    double m_progress = -1.0;
};

}  // namespace veltra::console
