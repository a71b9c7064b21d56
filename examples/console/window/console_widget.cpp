// SPDX-License-Identifier: MIT
#include "console_widget.h"

#include "../interruption.h"
#include "../requests.h"
#include "veltra/infrastructure/timer.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

namespace veltra::console {

namespace {

constexpr double kFramesPerSecond = 60.0;
constexpr char kFileFilter[] =
    "Audio files (*.wav *.wave *.aif *.aiff *.aifc *.flac *.ogg *.oga *.opus *.mp3 *.au *.caf "
    "*.w64);;"
    "All files (*)";

std::string pathOf(const QString& name) {
    return name.toLocal8Bit().toStdString();
}

}  // namespace

// A timer of the framework, so that the meters go on while a dialog is open.
class ConsoleWidget::Beat final : public Anchored {
public:
    explicit Beat(ConsoleWidget& widget)
        : m_widget(widget), m_timer(1.0 / kFramesPerSecond, this, action<&Beat::tick>(), nullptr) {
        m_timer.start();
    }
    void tick() { m_widget.refresh(); }

private:
    ConsoleWidget& m_widget;
    QkTimer m_timer;
};

ConsoleWidget::ConsoleWidget(Player& player) : m_player(player) {
    const Size size = ConsoleView::sizeForStrips(m_player.look().strips);
    auto view = std::make_unique<ConsoleView>(Rect{{}, size}, *this);
    m_view = view.get();
    setContentView(std::move(view));
    setWindowTitle(QStringLiteral("Veltra Console"));
    setMinimumSize(460, 320);
    setAcceptDrops(true);
    // The right button and the menu key show them; their keys work without the menu.
    setContextMenuPolicy(Qt::ActionsContextMenu);
    const auto offer = [this](const char* name, const QKeySequence& keys, auto reaction) {
        auto* const entry = new QAction(QString::fromUtf8(name), this);
        entry->setShortcut(keys);
        connect(entry, &QAction::triggered, this, reaction);
        addAction(entry);
    };
    offer("&Add files\u2026", QKeySequence(Qt::CTRL | Qt::Key_O), [this] { addFilesWasPressed(); });
    offer("&Stop reading waveforms", QKeySequence(Qt::Key_Escape),
          [this] { m_player.stopReading(); });
    offer("Show a &crash report\u2026", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
          [] { demonstrateException(); });
    offer("A&bout Veltra Console", QKeySequence(Qt::Key_F1), [this] { showAbout(); });
    m_beat = std::make_unique<Beat>(*this);
}

ConsoleWidget::~ConsoleWidget() = default;

void ConsoleWidget::refresh() {
    if (isInterrupted()) close();
    for (const std::string& problem : m_player.tick())
        m_view->addMessage(problem);
    m_view->update(m_player.look());
}

void ConsoleWidget::tell(const std::string& problem) {
    if (!problem.empty()) m_view->addMessage(problem);
}

void ConsoleWidget::showAbout() {
    auto* const box = new QMessageBox(QMessageBox::Information, QStringLiteral("About"),
                                      QString::fromStdString(aboutText()), QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ConsoleWidget::addFiles(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        tell(m_player.add(path));
    refresh();
}

void ConsoleWidget::addFilesWasPressed() {
    auto* const dialog = new QFileDialog(this, QStringLiteral("Add files"), QString(),
                                         QString::fromUtf8(kFileFilter));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& names) {
        std::vector<std::string> paths;
        for (const QString& name : names)
            paths.push_back(pathOf(name));
        addFiles(paths);
    });
    dialog->open();
}

void ConsoleWidget::removeStripWasPressed(StripKey key) {
    m_player.remove(key);
    refresh();
}

void ConsoleWidget::muteWasSwitched(StripKey key, bool muted) {
    m_player.setMuted(key, muted);
}

void ConsoleWidget::playAgainWasPressed(StripKey key) {
    tell(m_player.playAgain(key));
    refresh();
}

bool ConsoleWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::DragEnter: {
            auto* const drag = static_cast<QDragEnterEvent*>(event);
            if (!drag->mimeData()->hasUrls()) break;
            drag->acceptProposedAction();
            m_view->setDropTarget(true);
            return true;
        }
        case QEvent::DragLeave:
            m_view->setDropTarget(false);
            return true;
        case QEvent::Drop: {
            auto* const drop = static_cast<QDropEvent*>(event);
            m_view->setDropTarget(false);
            std::vector<std::string> paths;
            for (const QUrl& url : drop->mimeData()->urls()) {
                if (url.isLocalFile()) {
                    paths.push_back(pathOf(url.toLocalFile()));
                } else {
                    tell(url.toString().toStdString() +
                         ": only files of this machine can be played");
                }
            }
            drop->acceptProposedAction();
            addFiles(paths);
            return true;
        }
        default:
            break;
    }
    return ViewWidget::event(event);
}

}  // namespace veltra::console
