// SPDX-License-Identifier: MIT
// The console's window as Qt shows it: menus and dialogs, files that are dropped, keys for the
// whole window, and the beat of the redraws.
#pragma once

#include "../player.h"
#include "console_view.h"
#include "keyboard_desk.h"
#include "veltra/qt/view_widget.h"

#include <QMenu>
#include <QPointer>
#include <memory>

namespace veltra::console {

// Thread: main.
class ConsoleWidget final : public ViewWidget, public ConsoleDelegate {
public:
    // `player` must outlive the widget; `device` is what it was made with.
    ConsoleWidget(Player& player, Device device);
    ~ConsoleWidget() override;

    // Those that cannot be read are told of in the window.
    void addFiles(const std::vector<std::string>& paths);

protected:
    bool event(QEvent* event) override;

private:
    class Beat;

    void refresh();
    void offerActions();
    void showAbout();
    void showRecent(QMenu& menu);
    void showMeters(MeterKind kind);
    template <typename Action>
    QAction* offerChoice(QMenu& menu, const QString& name, bool isChosen, Action action);
    void offerMeterKinds(QMenu& menu);
    void offerMusicalMeters(QMenu& menu);
    void escape();
    void tell(const std::string& problem);
    std::string fileOfStrip() const;
    void openKeyboard(bool takesKeys);
    QPoint below(const View& view) const;
    QMenu* makeMenu();
    std::int64_t framesOf(double seconds) const;
    void chooseDevice(const Device& device);
    // An entry for that device with these settings; for this device with the present ones.
    QAction* offerSetting(QMenu& where, const QString& name, const Device& device);
    QAction* offerDevice(QMenu& where, const QString& name, const std::string& id);
    void showDevices();

    void addFilesWasPressed() override;
    void removeStripWasPressed(StripKey key) override;
    void undoWasPressed() override;
    void stripWasMoved(StripKey key, int place) override;
    void stripMenuWasPressed(StripKey key, View& button) override;
    void gainWasSet(StripKey key, double decibels) override;
    void panWasSet(StripKey key, double pan) override;
    void muteWasSwitched(StripKey key, bool muted) override;
    void soloWasSwitched(StripKey key, bool soloed) override;
    void playWasSwitched(bool playing) override;
    void loopWasSwitched(bool looping) override;
    void placeWasChosen(double seconds) override;
    void loopWasChosen(double begin, double end) override;
    void keyboardWasSwitched(bool open) override;
    void tempoWasSet(double beatsPerMinute) override;
    void meterWasSet(int beatsPerBar, int beatUnit) override;
    void outputGainWasSet(double decibels) override;
    void outputBalanceWasSet(double balance) override;
    void dimWasSwitched(bool dimmed) override;
    void monoWasSwitched(bool mono) override;
    void deviceMenuWasPressed(View& button) override;
    void allMessagesWerePressed(const std::vector<std::string>& messages) override;

    Player& m_player;
    ConsoleView* m_view;
    Device m_device;                     // that is wanted
    QPointer<QMenu> m_deviceMenu;        // null: not open
    QAction* m_beforeDevices = nullptr;  // where devices join it, while it is open
    KeyboardDesk m_keyboard;
    std::unique_ptr<Beat> m_beat;
};

}  // namespace veltra::console
