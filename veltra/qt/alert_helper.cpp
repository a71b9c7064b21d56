// SPDX-License-Identifier: MIT
// veltra-alert: shows one alert and writes the answer to standard output. The library starts it;
// the arguments and the answer are laid down in alert_protocol.h.
//
// For looking at the window: --picture=FILE.png writes a picture of it instead, --dark in dark
// colours.
#include "veltra/platform/alert_protocol.h"
#include "veltra/qt/alert_dialog.h"

#include <QApplication>
#include <QPixmap>
#include <QSocketNotifier>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

// The exit status tells a person who tries the program by hand; the library looks at the answer.
constexpr int kCouldNotAsk = 70;

struct Options {
    veltra::AlertTexts texts;
    int timeoutMilliseconds = 60'000;
    QString picture;
    bool isDark = false;
};

// Each value is part of its argument, so that it may begin with a hyphen.
Options parse(int count, char** arguments) {
    Options options;
    QString timeout;
    const std::pair<std::string_view, QString*> values[] = {
        {"--title=", &options.texts.title},
        {"--header=", &options.texts.header},
        {"--message=", &options.texts.message},
        {"--default=", &options.texts.defaultButton},
        {"--alternate=", &options.texts.alternateButton},
        {"--other=", &options.texts.otherButton},
        {"--timeout=", &timeout},
        {"--picture=", &options.picture},
    };
    for (int index = 1; index < count; ++index) {
        const std::string_view argument = arguments[index];
        if (argument == "--dark") options.isDark = true;
        if (argument == "--critical") options.texts.style = veltra::AlertStyle::Critical;
        for (const auto& [name, value] : values) {
            if (argument.starts_with(name))
                *value = QString::fromUtf8(argument.substr(name.size()));
        }
    }
    options.texts.message = options.texts.message.trimmed();
    if (options.texts.defaultButton.isEmpty()) options.texts.defaultButton = QStringLiteral("OK");
    bool isNumber = false;
    const int milliseconds = timeout.toInt(&isNumber);
    if (isNumber && milliseconds > 0) options.timeoutMilliseconds = milliseconds;
    return options;
}

// Qt aborts when it cannot reach the display. That is an ordinary way to fail here, not worth a
// core file.
void quietly(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "veltra-alert: %s\n", qUtf8Printable(message));
        std::_Exit(kCouldNotAsk);
    }
}

QPalette darkPalette() {
    QPalette palette(QColor(0x35, 0x35, 0x39), QColor(0x2B, 0x2B, 0x2E));
    palette.setColor(QPalette::Highlight, QColor(0x3D, 0x7E, 0xC4));
    return palette;
}

// A window that nobody can see must not hold up the asking process.
bool isVisiblePlatform() {
    const QString name = QGuiApplication::platformName();
    return name != QLatin1String("offscreen") && !name.startsWith(QLatin1String("minimal"));
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parse(argc, argv);
    qInstallMessageHandler(quietly);
    QApplication application(argc, argv);
    if (options.isDark) QApplication::setPalette(darkPalette());

    veltra::AlertDialog dialog(options.texts, options.timeoutMilliseconds);
    if (!options.picture.isEmpty()) {
        dialog.ensurePolished();
        return dialog.grab().save(options.picture) ? EXIT_SUCCESS : kCouldNotAsk;
    }
    if (!isVisiblePlatform()) return kCouldNotAsk;

    // Nothing is ever sent: input that becomes readable is the end of the asking process.
    QSocketNotifier asker(0, QSocketNotifier::Read);
    QObject::connect(&asker, &QSocketNotifier::activated, [] { std::_Exit(kCouldNotAsk); });

    dialog.exec();
    const std::string_view word =
        veltra::kAlertAnswerWords[static_cast<std::size_t>(dialog.answer())];
    std::printf("%.*s\n", static_cast<int>(word.size()), word.data());
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : kCouldNotAsk;
}
