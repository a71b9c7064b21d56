// SPDX-License-Identifier: MIT
// Every control in every state.
//
//   gallery                            a window in which the controls can be tried out
//   gallery --list                     the names of the sheets
//   gallery --sheet NAME               the window shows one sheet
//   gallery --pictures FOLDER [SCALE]  writes gallery-NAME-dark.png and -light.png for each sheet,
//                                      without a display; SCALE are pixels a point (2)
#include "sheet_view.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/view_widget.h"

#include <QApplication>
#include <QScrollArea>
#include <QTabWidget>
#include <algorithm>
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

// The sheet of that name, or all of them.
int showWindow(const std::string& name) {
    QTabWidget tabs;
    tabs.setWindowTitle(QStringLiteral("Veltra Gallery"));
    for (const Sheet& sheet : sheets()) {
        if (!name.empty() && sheet.name != name) continue;
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
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--list" && argc == 2) {
        for (const Sheet& sheet : sheets())
            std::printf("%s\n", sheet.name.c_str());
        return 0;
    }
    const bool writes = option == "--pictures" && (argc == 3 || argc == 4);
    const bool showsOne = option == "--sheet" && argc == 3;
    if (argc > 1 && !writes && !showsOne) {
        std::fprintf(stderr,
                     "usage: gallery [--list | --sheet NAME | --pictures FOLDER [SCALE]]\n");
        return 2;
    }
    const std::vector<Sheet> all = sheets();
    const auto isAskedFor = [&](const Sheet& sheet) { return sheet.name == argv[2]; };
    if (showsOne && std::none_of(all.begin(), all.end(), isAskedFor)) {
        std::fprintf(stderr, "gallery: there is no sheet %s; see gallery --list\n", argv[2]);
        return 2;
    }
    if (writes) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    installQtPort();
    return writes ? writePictures(argv[2], argc > 3 ? std::strtof(argv[3], nullptr) : 2.0F)
                  : showWindow(showsOne ? argv[2] : "");
}
