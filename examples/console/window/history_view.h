// SPDX-License-Identifier: MIT
// The peaks of the output in the last half minute, in columns; those that have clipped in red.
#pragma once

#include "veltra/base/time.h"
#include "veltra/ui/view.h"

#include <deque>

namespace veltra::console {

// Thread: main.
class HistoryView final : public View {
public:
    static constexpr double kSeconds = 30.0;

    HistoryView() = default;

    // The largest magnitude since the last call, 1 at full scale, and what time it is.
    void add(float peak, Moment now);
    void setHasAxis(bool hasAxis);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    Rect field() const;

    std::deque<float> m_peaks;  // one for each column, the newest last
    std::int64_t m_column = 0;  // of the newest, counted from the beginning of time
    bool m_hasAxis = true;
};

}  // namespace veltra::console
