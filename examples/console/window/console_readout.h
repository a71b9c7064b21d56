// SPDX-License-Identifier: MIT
// A peak read-out that leaves the space bar to the transport: Return resets it.
#pragma once

#include "veltra/controls/level_meters/peak_readout.h"

namespace veltra::console {

// Thread: main.
class ConsoleReadout final : public PeakReadout {
public:
    using PeakReadout::PeakReadout;

    bool wantsKey(const Event& event) const override {
        return event.plainKey() != u' ' && PeakReadout::wantsKey(event);
    }
};

}  // namespace veltra::console
