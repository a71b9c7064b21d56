// SPDX-License-Identifier: MIT
// A host outside the tree: one view in a widget of its own, drawn once.
#include "veltra/qt/view_widget.h"
#include "veltra/ui/canvas.h"

#include <QApplication>
#include <QImage>
#include <QPixmap>

namespace {

class Lamp final : public veltra::View {
public:
    using View::View;
    void drawRect(veltra::Canvas& canvas, const veltra::Rect& /*dirty*/) override {
        canvas.fillRect(bounds(), veltra::Color::fromRgb(0x00FF00));
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    veltra::ViewWidget widget;
    widget.setContentView(std::make_unique<Lamp>(veltra::Rect{{}, {40, 30}}));
    widget.resize(widget.sizeHint());
    const QImage picture = widget.grab().toImage();
    const bool isGreen = picture.pixelColor(20, 15) == QColor(Qt::green);
    return picture.size() == QSize(40, 30) && isGreen ? 0 : 1;
}
