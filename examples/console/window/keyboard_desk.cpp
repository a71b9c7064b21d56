// SPDX-License-Identifier: MIT
#include "keyboard_desk.h"

#include "../text.h"
#include "keyboard_pad.h"
#include "keyboard_tools.h"
#include "settings.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace veltra::console {

namespace {

constexpr Size kSize{900.0F, 262.0F};  // without the strip
constexpr Size kSmallest{712.0F, 150.0F};
constexpr float kStrip = 30.0F;
constexpr float kFromFoot = 24.0F;  // of the console

}  // namespace

class KeyboardDesk::DeskWindow final : public DfKeyboardWindow {
public:
    DeskWindow(const Rect& contentRect, KeyboardDesk& desk)
        : DfKeyboardWindow(contentRect), m_desk(desk) {}
    void didClose() override { m_desk.close(); }

private:
    KeyboardDesk& m_desk;
};

KeyboardDesk::KeyboardDesk(Player& player, std::function<std::string()> fileOfStrip)
    : m_player(player), m_fileOfStrip(std::move(fileOfStrip)) {}

KeyboardDesk::~KeyboardDesk() {
    leave();
}

void KeyboardDesk::makeWindow(const Rect& console) {
    const Settings::Keyboard kept = Settings::keyboard();
    const Point place{std::max(console.center().x - kSize.width / 2.0F, 0.0F),
                      std::max(console.maxY() - kSize.height - kStrip - kFromFoot, kStrip)};
    m_window = std::make_unique<DeskWindow>(Rect{place, kSize}, *this);
    m_window->setTitle("Keyboard");
    m_window->setMinSize(kSmallest);
    auto tools = std::make_unique<KeyboardTools>(Rect{{}, {kSize.width, kStrip}}, *this);
    m_tools = tools.get();
    m_tools->setVelocity(kept.velocity);
    auto pad = std::make_unique<KeyboardPad>(Rect{{}, kSize}, *this, *m_tools);
    m_pad = pad.get();
    m_pad->showKeysFrom(kept.firstKey);
    m_window->setContentView(std::move(pad));
    m_window->setToolbarView(std::move(tools));
    m_window->df_addToolbarWidget();
    m_window->showToolbar();
    m_window->makeFirstResponder(&m_pad->keys());
    if (!kept.file.empty()) m_player.keys().playFile(kept.file);
}

void KeyboardDesk::open(const Rect& console, bool takesKeys) {
    if (!m_window) makeWindow(console);
    refresh();
    if (takesKeys) {
        m_window->makeKeyAndOrderFront();
    } else {
        m_window->orderFront();
    }
    save(true);
}

void KeyboardDesk::close() {
    if (!m_window) return;
    m_pad->letGo();
    m_window->orderOut();
    save(false);
}

void KeyboardDesk::leave() {
    if (!isOpen()) return;
    close();
    save(true);
}

bool KeyboardDesk::isOpen() const {
    return m_window && m_window->isVisible();
}

bool KeyboardDesk::wasOpen() {
    return Settings::keyboard().isOpen;
}

void KeyboardDesk::save(bool isOpen) const {
    Settings::setKeyboard({isOpen, m_pad->firstKey(), m_tools->velocity(), m_player.keys().file()});
}

void KeyboardDesk::refresh() {
    if (!m_window) return;
    const Keys& keys = m_player.keys();
    std::string text;
    if (!keys.file().empty()) {
        text = keys.isReading() ? "Reading " : "";
        text += printable(std::filesystem::path(keys.file()).filename().string());
    }
    m_tools->showFile(text, !m_fileOfStrip().empty());
}

void KeyboardDesk::noteWasPressed(int note, int velocity) {
    m_player.keys().press(note, velocity);
}

void KeyboardDesk::noteWasReleased(int note) {
    m_player.keys().release(note);
}

void KeyboardDesk::allNotesWereReleased() {
    m_player.keys().releaseAll();
}

void KeyboardDesk::sustainWasSwitched(bool sustained) {
    m_player.keys().setSustained(sustained);
}

void KeyboardDesk::fileWasSwitched(bool file) {
    const std::string path = file ? m_fileOfStrip() : std::string();
    if (path.empty()) {
        m_player.keys().playTone();
    } else {
        m_player.keys().playFile(path);
    }
    refresh();
}

}  // namespace veltra::console
