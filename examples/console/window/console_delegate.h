// SPDX-License-Identifier: MIT
// What the window's views ask for when the user operates them.
#pragma once

#include "../console_state.h"

#include <string>
#include <vector>

namespace veltra {
class View;
}

namespace veltra::console {

// Thread: main. A view that calls may be gone when the call returns.
class ConsoleDelegate {
public:
    virtual ~ConsoleDelegate() = default;

    virtual void addFilesWasPressed() {}
    virtual void removeStripWasPressed(StripKey /*key*/) {}
    virtual void undoWasPressed() {}
    virtual void stripWasMoved(StripKey /*key*/, int /*place*/) {}
    // Wants a menu at the foot of this view.
    virtual void stripMenuWasPressed(StripKey /*key*/, View& /*button*/) {}

    virtual void gainWasSet(StripKey /*key*/, double /*decibels*/) {}
    virtual void panWasSet(StripKey /*key*/, double /*pan*/) {}
    virtual void muteWasSwitched(StripKey /*key*/, bool /*muted*/) {}
    virtual void soloWasSwitched(StripKey /*key*/, bool /*soloed*/) {}

    virtual void playWasSwitched(bool /*playing*/) {}
    virtual void loopWasSwitched(bool /*looping*/) {}
    virtual void placeWasChosen(double /*seconds*/) {}
    virtual void loopWasChosen(double /*begin*/, double /*end*/) {}  // seconds
    virtual void keyboardWasSwitched(bool /*open*/) {}
    virtual void tempoWasSet(double /*beatsPerMinute*/) {}

    virtual void meterWasSet(int /*beatsPerBar*/, int /*beatUnit*/) {}

    virtual void outputGainWasSet(double /*decibels*/) {}
    virtual void outputBalanceWasSet(double /*balance*/) {}
    virtual void dimWasSwitched(bool /*dimmed*/) {}
    virtual void monoWasSwitched(bool /*mono*/) {}
    virtual void deviceMenuWasPressed(View& /*button*/) {}

    virtual void allMessagesWerePressed(const std::vector<std::string>& /*messages*/) {}
};

}  // namespace veltra::console
