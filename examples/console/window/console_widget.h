// SPDX-License-Identifier: MIT
// The console's window as Qt shows it: dialogs, files that are dropped, and the beat of the
// redraws.
#pragma once

#include "../player.h"
#include "console_view.h"
#include "veltra/qt/view_widget.h"

#include <memory>

namespace veltra::console {

// Thread: main.
class ConsoleWidget final : public ViewWidget, public ConsoleDelegate {
public:
    explicit ConsoleWidget(Player& player);  // must outlive the widget
    ~ConsoleWidget() override;

    // Those that cannot be read are told of in the window.
    void addFiles(const std::vector<std::string>& paths);

protected:
    bool event(QEvent* event) override;

private:
    class Beat;

    void refresh();
    void showAbout();
    void tell(const std::string& problem);

    void addFilesWasPressed() override;
    void removeStripWasPressed(StripKey key) override;
    void muteWasSwitched(StripKey key, bool muted) override;
    void playAgainWasPressed(StripKey key) override;

    Player& m_player;
    ConsoleView* m_view;
    std::unique_ptr<Beat> m_beat;
};

}  // namespace veltra::console
