// SPDX-License-Identifier: MIT
// A thin line below the header: how far the files are read whose waveforms are being made.
#pragma once

#include "../progress_board.h"
#include "veltra/ui/view.h"

#include <string>
#include <vector>

namespace veltra::console {

// Hidden while nothing is read. Thread: main.
class ReadingLine final : public View {
public:
    static constexpr float kHeight = 3.0F;

    explicit ReadingLine(const Rect& frame);

    void update(const std::vector<ProgressLine>& lines);

    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override {
        return AccessibilityRole::LevelIndicator;
    }
    std::string accessibilityName() const override { return "Reading " + m_title; }
    std::string accessibilityValueText() const override;

private:
    std::string m_title;    // of the line that is shown, the first
    double m_value = -1.0;  // 0 to 1; below 0: nobody knows
};

}  // namespace veltra::console
