// SPDX-License-Identifier: MIT
// What the keyboard window asks for when the user plays it.
#pragma once

namespace veltra::console {

// Thread: main.
class KeyboardDelegate {
public:
    virtual ~KeyboardDelegate() = default;

    virtual void noteWasPressed(int /*note*/, int /*velocity*/) {}
    virtual void noteWasReleased(int /*note*/) {}
    virtual void allNotesWereReleased() {}  // also those that the pedal holds
    virtual void sustainWasSwitched(bool /*sustained*/) {}
    // The file of the strip that the user works with, or a tone.
    virtual void fileWasSwitched(bool /*file*/) {}
    virtual void keyboardWasClosed() {}  // by its user
};

}  // namespace veltra::console
