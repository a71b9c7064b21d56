// SPDX-License-Identifier: MIT
// Where the music is: bar, beat and tick in large figures, and the time.
#pragma once

#include "../console_state.h"
#include "label.h"
#include "veltra/ui/view.h"

namespace veltra::console {

// Thread: main.
class TransportView final : public View {
public:
    static constexpr Size kSize{250.0F, 44.0F};

    explicit TransportView(const Rect& frame);

    void update(const BarBeatTick& place, double seconds);

    bool isFlipped() const override { return true; }
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Transport"; }

private:
    Label& m_place;
    Label& m_time;
};

}  // namespace veltra::console
