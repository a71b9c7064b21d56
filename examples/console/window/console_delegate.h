// SPDX-License-Identifier: MIT
// What the window's views ask for when the user operates them.
#pragma once

#include "../console_state.h"

namespace veltra::console {

// Thread: main. A view that calls may be gone when the call returns.
class ConsoleDelegate {
public:
    virtual ~ConsoleDelegate() = default;
    virtual void addFilesWasPressed() {}
    virtual void removeStripWasPressed(StripKey /*key*/) {}
    virtual void muteWasSwitched(StripKey /*key*/, bool /*muted*/) {}
    virtual void playAgainWasPressed(StripKey /*key*/) {}
};

}  // namespace veltra::console
