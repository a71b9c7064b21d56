// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/keyboard/keyboard_panel.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/keyboard_window.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/ui/theme.h"

#include <QMouseEvent>
#include <QWidget>

namespace veltra::testing {
namespace {

template <typename V>
V& shown(PictureWindow& picture, std::unique_ptr<V> view) {
    V& made = *view;
    picture.window().setContentView(std::move(view));
    return made;
}

// Both ends of the range lie on borders between keys, in whole pixels at every scale, and all
// lines between keys have one width.
TEST(Pictures, TheRangeOfThePickerBeginsAndEndsBetweenKeys) {
    for (const Setting& setting : settings()) {
        for (const bool isLarge : {true, false}) {
            const Size size = DfOctavePickerView::naturalSize(isLarge);
            PictureWindow picture(size, setting.scale, setting.appearance);
            auto& picker = shown(picture, std::make_unique<DfOctavePickerView>(Rect{}, isLarge));
            const auto accent = rgbOf(theme(setting.appearance).accent);
            for (const KeyRange range : {KeyRange{0, 10}, KeyRange{31, 11}, KeyRange{64, 10}}) {
                picker.setKeyRange(range);
                const Pixels pixels(picture.draw());
                const std::int32_t row = pixels.height() / 2;
                std::vector<std::int32_t> edges;
                for (std::int32_t x = 0; x < pixels.width(); ++x) {
                    if (pixels.rgbAt(x, row) == accent) edges.push_back(x);
                }
                const auto width = std::lround(3 * setting.scale - 0.01F);
                ASSERT_EQ(edges.size(), 2U * static_cast<std::size_t>(width)) << setting.scale;
                const Rect rect = picker.rangeRect();
                EXPECT_EQ(edges.front(), std::lround((rect.minX() - 2) * setting.scale));
                EXPECT_EQ(edges.back() + 1, std::lround((rect.maxX() + 3) * setting.scale));
            }
        }
    }
}

// Strips of one colour along a row: where each begins, and how long it is.
std::vector<std::int32_t> lengthsOf(const Pixels& pixels, std::int32_t row, std::uint32_t color) {
    std::vector<std::int32_t> lengths;
    bool wasInside = false;
    for (std::int32_t x = 0; x < pixels.width(); ++x) {
        const bool isInside = pixels.rgbAt(x, row) == color;
        if (isInside && !wasInside) lengths.push_back(0);
        if (isInside) ++lengths.back();
        wasInside = isInside;
    }
    return lengths;
}

TEST(Pictures, TheLinesBetweenKeysHaveOneWidthAndPressedKeysTheAccent) {
    for (const Setting& setting : settings()) {
        PictureWindow picture({401, 100}, setting.scale, setting.appearance);
        auto& keys = shown(picture, std::make_unique<KeyboardView>(Rect{}));
        keys.setKeyRange({35, 15});
        const bool isDark = setting.appearance == Appearance::Dark;
        const Pixels pixels(picture.draw());
        const auto row = static_cast<std::int32_t>(std::lround(80 * setting.scale));
        const auto lines = lengthsOf(pixels, row, isDark ? 0x0B0A0AU : 0xB9B4AAU);
        EXPECT_EQ(lines, std::vector<std::int32_t>(
                             15, static_cast<std::int32_t>(std::lround(setting.scale - 0.01F))))
            << setting.scale;
        keys.setNotePressed(64, true);
        const Pixels played(picture.draw());
        const auto foot = static_cast<std::int32_t>(std::lround(96 * setting.scale));
        const Rect key = KeyboardLayout{{401, 100}, {35, 15}, 0}.rectOfNote(64);
        const auto middle = static_cast<std::int32_t>(std::lround(key.center().x * setting.scale));
        const auto accent = theme(setting.appearance).accent;
        for (const std::uint32_t shift : {0U, 8U, 16U}) {
            const auto part = [=](std::uint32_t rgb) {
                return static_cast<int>(rgb >> shift & 0xFFU);
            };
            EXPECT_NEAR(part(played.rgbAt(middle, foot)), part(rgbOf(accent)), 3);
        }
    }
}

void click(QWidget& widget, QPoint point) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, point, widget.mapToGlobal(point), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
    QCoreApplication::processEvents();
}

// The strip comes and goes in a window of the toolkit as the model has it.
template <typename W>
void showAndHide() {
    toolkit();
    W window(Rect{{100, 100}, {420, 160}});
    window.setContentView(std::make_unique<View>(Rect{{}, {420, 160}}));
    auto& keys = window.contentView()->addSubview(
        std::make_unique<KeyboardView>(Rect{{10, 10}, {400, 120}}));
    keys.setAutoresizingMask(AutoresizingMask(kViewWidthSizable) | kViewHeightSizable);
    window.setToolbarView(std::make_unique<View>(Rect{{}, {300, 30}}));
    window.df_addToolbarWidget();
    window.setMinSize({200, 100});
    window.setMaxSize({800, 400});
    window.makeKeyAndOrderFront();
    QWidget* const top = QApplication::topLevelWidgets().constFirst();
    QCoreApplication::processEvents();
    for (int round = 0; round < 3; ++round) {
        for (const int height : {190, 160}) {
            click(*top, {420 - 26, 15});
            EXPECT_EQ(top->size(), QSize(420, height));
            EXPECT_EQ(keys.frame(), (Rect{{10, 10}, {400, 120}}));
        }
    }
    window.showToolbar();
    top->resize(900, 900);  // as the user does
    QCoreApplication::processEvents();
    EXPECT_EQ(top->size(), QSize(800, 430));
    EXPECT_EQ(keys.frame(), (Rect{{10, 10}, {780, 360}}));
    EXPECT_EQ(window.toolbarView()->frame(), (Rect{{250, 400}, {300, 30}}));
}

TEST(KeyboardWindows, ShowAndHideTheirStripOnTheToolkit) {
    showAndHide<DfKeyboardWindow>();
    showAndHide<DfKeyboardPanel>();
}

}  // namespace
}  // namespace veltra::testing
