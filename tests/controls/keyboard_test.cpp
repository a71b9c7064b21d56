// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/keyboard_window.h"

#include <QWidget>

namespace veltra::testing {
namespace {

// The strip comes and goes in a window of the toolkit as the model has it.
TEST(KeyboardWindows, ShowAndHideTheirStripOnTheToolkit) {
    DfKeyboardWindow window(Rect{{100, 100}, {420, 160}});
    window.setContentView(std::make_unique<View>(Rect{{}, {420, 160}}));
    auto& keys = window.contentView()->addSubview(
        std::make_unique<KeyboardView>(Rect{{10, 10}, {400, 120}}));
    keys.setAutoresizingMask(AutoresizingMask(kViewWidthSizable) | kViewHeightSizable);
    window.setToolbarView(std::make_unique<View>(Rect{{}, {300, 30}}));
    window.setMaxSize({800, 400});
    window.makeKeyAndOrderFront();
    QWidget* const top = QApplication::topLevelWidgets().constFirst();
    for (const int height : {190, 160, 190, 160, 190}) {
        window.toggleToolbar();
        QCoreApplication::processEvents();
        EXPECT_EQ(top->size(), QSize(420, height));
        EXPECT_EQ(keys.frame(), (Rect{{10, 10}, {400, 120}}));
    }
    top->resize(900, 900);  // as the user does
    QCoreApplication::processEvents();
    EXPECT_EQ(top->size(), QSize(800, 430));
    EXPECT_EQ(keys.frame(), (Rect{{10, 10}, {780, 360}}));
    EXPECT_EQ(window.toolbarView()->frame(), (Rect{{250, 400}, {300, 30}}));
}

}  // namespace
}  // namespace veltra::testing
