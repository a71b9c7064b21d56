// SPDX-License-Identifier: MIT
// veltra-console-window: the console with a window. veltra-console starts it where there is a
// display, or for a picture; the command line is the same.
#include "../interruption.h"
#include "../options.h"
#include "../output_file.h"
#include "../report.h"
#include "../requests.h"
#include "../terminal_progress.h"
#include "../text.h"
#include "../window_program.h"
#include "console_widget.h"
#include "loudest_picture.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/terminate_report.h"
#include "veltra/qt/qt_port.h"

#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>

namespace {

using namespace veltra::console;

int showWindow(const Options& options) {
    veltra::VLInstallTerminateHandler();
    veltra::VLBacktracingException::install();
    listenForInterruption();
    Player player(options.device);
    {
        ConsoleWidget widget(player, options.device);
        widget.addFiles(options.files);
        widget.show();
        QApplication::exec();
    }
    const auto entries = player.finish();
    const bool hasProblems =
        std::any_of(entries.begin(), entries.end(), [](const ReportEntry& entry) {
            return !entry.error.empty() || (entry.result && !entry.result->problem.empty());
        });
    const std::string refusal =
        options.report.empty() ? "" : writeReport(makeReport(entries), options.report);
    if (!refusal.empty()) std::fprintf(stderr, "veltra-console: %s\n", refusal.c_str());
    return hasProblems || !refusal.empty() ? 1 : 0;
}

// Qt ends the program where the display does not answer, as one of a session that is gone: the
// terminal takes over, but not from a picture. What else Qt has to say of a picture, or before the
// application stands, is of no use to anybody, unless it is the end.
std::span<char*> commandLine;

void onMessageOfQt(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type != QtFatalMsg && type != QtCriticalMsg) return;
    if (type == QtFatalMsg) becomeTerminal(commandLine);
    std::fprintf(stderr, "veltra-console: %s\n", qUtf8Printable(text));
}

}  // namespace

int main(int argc, char** argv) try {
    introduceProgram();
    std::string error;
    const auto options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)}, error);
    if (!options) {
        std::fprintf(stderr, "veltra-console: %s; see veltra-console --help\n", error.c_str());
        return 2;
    }
    if (const auto status = answerRequest(*options)) return *status;
    if (const std::string problem = whyNotWrite(*options); !problem.empty()) {
        std::fprintf(stderr, "veltra-console: %s\n", problem.c_str());
        return 2;
    }
    const bool hasWindow = options->picture.empty();
    if (hasWindow) commandLine = {argv, static_cast<std::size_t>(argc)};
    if (!hasWindow) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(onMessageOfQt);
    QApplication application(argc, argv);
    if (hasWindow) qInstallMessageHandler(nullptr);
    QApplication::setApplicationDisplayName(QStringLiteral("Veltra Console"));
    QApplication::setDesktopFileName(QStringLiteral("org.veltra.console"));
    veltra::installQtPort();
    if (hasWindow) return showWindow(*options);
    std::optional<TerminalProgress> progress;
    if (options->progress || TerminalProgress::isTerminal()) progress.emplace();
    const auto problems = writeLoudestPicture(*options);
    for (const std::string& problem : problems)
        std::fprintf(stderr, "veltra-console: %s\n", problem.c_str());
    return problems.empty() ? 0 : 1;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "veltra-console: %s; giving up\n", failure.what());
    return 1;
}
