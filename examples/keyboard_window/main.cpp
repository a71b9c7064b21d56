// SPDX-License-Identifier: MIT
// An on-screen keyboard in a window of its own: keys to play on, and a strip with an octave picker
// that chooses which of them are shown. Started with QT_QPA_PLATFORM=offscreen it plays a note by
// itself, checks what it heard and ends.
#include "veltra/controls/keyboard/keyboard_toolbar_view.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/keyboard_window.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/controls/keyboard/white_keys.h"
#include "veltra/qt/qt_port.h"
#include "veltra/ui/application.h"

#include <QApplication>
#include <cstdio>

namespace {

using namespace veltra;

class Host final : public Anchored, public KeyboardViewDelegate {
public:
    void keyboardViewDidPressNote(KeyboardView&, std::int32_t note,
                                  std::int32_t velocity) override {
        std::printf("note %d on, velocity %d\n", note, velocity);
        lastNote = note;
    }
    void keyboardViewDidReleaseNote(KeyboardView&, std::int32_t note) override {
        std::printf("note %d off\n", note);
    }
    void rangeChanged(DfOctavePickerView& picker) {
        keyboard->setKeyRange(picker.keyRange());
        const auto first = static_cast<std::int32_t>(picker.keyRange().location);
        std::printf("from note %d on\n", VLNoteForWhiteKey(first, picker.firstNote()));
    }

    KeyboardView* keyboard = nullptr;
    std::int32_t lastNote = -1;
};

class KeyboardWindow final : public DfKeyboardWindow {
public:
    using DfKeyboardWindow::DfKeyboardWindow;
    void didClose() override { Application::current().terminate(); }
};

constexpr AutoresizingMask kWithTheWindow =
    AutoresizingMask(kViewWidthSizable) | kViewHeightSizable;

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    installQtPort();
    Host host;

    KeyboardWindow window(Rect{{100, 100}, {900, 240}});
    window.setTitle("Keyboard");
    auto content = std::make_unique<View>(Rect{{}, {900, 240}});
    auto& keys = content->addSubview(std::make_unique<KeyboardView>(Rect{{16, 16}, {868, 190}}));
    keys.setAutoresizingMask(kWithTheWindow);
    keys.setDelegate(&host);
    host.keyboard = &keys;
    window.setContentView(std::move(content));

    const Size size = DfOctavePickerView::naturalSize(false);
    auto strip = std::make_unique<KeyboardToolbarView>(Rect{{}, {900, 30}});
    auto& picker =
        strip->addSubview(std::make_unique<DfOctavePickerView>(Rect{{12, 2}, size}, false));
    picker.setTarget(&host);
    picker.setAction(action<&Host::rangeChanged>());
    picker.setKeyRange({21, 22});
    host.rangeChanged(picker);
    window.setToolbarView(std::move(strip));
    window.df_addToolbarWidget();
    window.showToolbar();
    window.makeKeyAndOrderFront();

    if (QGuiApplication::platformName() != QStringLiteral("offscreen")) return QApplication::exec();
    keys.fingerDown(0, {20.0F, 150.0F});
    keys.fingerUp(0);
    return window.frame().size.height == 270.0F && host.lastNote == 36 ? 0 : 1;
}
