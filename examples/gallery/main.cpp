// SPDX-License-Identifier: MIT
// Every control in every state.
//
//   gallery                          a window in which the controls can be tried out
//   gallery --pictures FOLDER [SCALE] writes gallery-NAME-dark.png and -light.png for each family,
//                                    without a display; SCALE are pixels a point (2)
#include "sheet_view.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/view_widget.h"

#include <QApplication>
#include <QScrollArea>
#include <QTabWidget>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace veltra;
using namespace veltra::gallery;

namespace {

int writePictures(const std::string& folder, float scale) {
    for (const Sheet& sheet : sheets()) {
        for (const Appearance appearance : {Appearance::Dark, Appearance::Light}) {
            const bool isDark = appearance == Appearance::Dark;
            const std::string path =
                folder + "/gallery-" + sheet.name + (isDark ? "-dark.png" : "-light.png");
            const auto picture = pictureOf(sheet, scale, appearance);
            if (picture == nullptr || !picture->writePng(path)) {
                std::fprintf(stderr, "gallery: %s cannot be written\n", path.c_str());
                return 1;
            }
            std::printf("%s\n", path.c_str());
        }
    }
    return 0;
}

int showWindow() {
    QTabWidget tabs;
    tabs.setWindowTitle(QStringLiteral("Veltra Gallery"));
    for (const Sheet& sheet : sheets()) {
        auto view = std::make_unique<SheetView>(sheet);
        const Size size = view->frame().size;
        auto* const widget = new ViewWidget;
        widget->setContentView(std::move(view));
        widget->setFixedSize(static_cast<int>(size.width), static_cast<int>(size.height));
        auto* const area = new QScrollArea;
        area->setWidget(widget);
        tabs.addTab(area, QString::fromStdString(sheet.title));
    }
    tabs.resize(1000, 640);
    tabs.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const bool writes = argc >= 3 && std::string(argv[1]) == "--pictures";
    if (argc > 1 && !writes) {
        std::fprintf(stderr, "usage: gallery [--pictures FOLDER [SCALE]]\n");
        return 2;
    }
    if (writes) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    installQtPort();
    return writes ? writePictures(argv[2], argc > 3 ? std::strtof(argv[3], nullptr) : 2.0F)
                  : showWindow();
}
