// SPDX-License-Identifier: MIT
// The keyboard window, and the player that it plays.
#pragma once

#include "../player.h"
#include "keyboard_delegate.h"
#include "veltra/controls/keyboard/keyboard_window.h"

#include <functional>
#include <memory>
#include <string>

namespace veltra::console {

class KeyboardPad;
class KeyboardTools;

// What the user set is kept in the preferences. Thread: main.
class KeyboardDesk final : public KeyboardDelegate {
public:
    // `fileOfStrip` answers the file of the strip that the user works with; empty: there is none.
    // `player` must outlive the desk.
    KeyboardDesk(Player& player, std::function<std::string()> fileOfStrip);
    KeyboardDesk(const KeyboardDesk&) = delete;
    KeyboardDesk& operator=(const KeyboardDesk&) = delete;
    ~KeyboardDesk() override;

    // Over the foot of `console`, a frame on screen, when it is opened for the first time. With
    // the keys of the computer, or only beside the window that has them.
    void open(const Rect& console, bool takesKeys);
    void close();
    // The same with the program: the next run opens it again.
    void leave();
    bool isOpen() const;
    // Whether it was when the program ended.
    static bool wasOpen();

    // Shows what has been read. Call it with each look at the player.
    void refresh();

private:
    class DeskWindow;

    void makeWindow(const Rect& console);
    void save(bool isOpen) const;

    void noteWasPressed(int note, int velocity) override;
    void noteWasReleased(int note) override;
    void allNotesWereReleased() override;
    void sustainWasSwitched(bool sustained) override;
    void fileWasSwitched(bool file) override;
    void keyboardWasClosed() override { close(); }

    Player& m_player;
    const std::function<std::string()> m_fileOfStrip;
    std::unique_ptr<DfKeyboardWindow> m_window;  // null until it is opened
    KeyboardTools* m_tools = nullptr;            // the window's
    KeyboardPad* m_pad = nullptr;                // the window's
};

}  // namespace veltra::console
