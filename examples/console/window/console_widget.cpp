// SPDX-License-Identifier: MIT
#include "console_widget.h"

#include "../interruption.h"
#include "../requests.h"
#include "../text.h"
#include "settings.h"
#include "veltra/infrastructure/timer.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStyle>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <filesystem>

namespace veltra::console {

namespace {

constexpr double kFramesPerSecond = 60.0;
// 0: what the device likes, what the first file has.
constexpr std::uint32_t kBlocks[] = {0, 128, 256, 512, 1024, 2048};
constexpr std::int32_t kRates[] = {0, 44100, 48000, 88200, 96000, 192000};
constexpr char kFileFilter[] =
    "Audio files (*.wav *.wave *.aif *.aiff *.aifc *.flac *.ogg *.oga *.opus *.mp3 *.au *.caf "
    "*.w64);;"
    "All files (*)";

std::string pathOf(const QString& name) {
    return name.toLocal8Bit().toStdString();
}

QString textOf(const std::string& text) {
    return QString::fromStdString(text);
}

// Whoever is told that files were moved here may delete them.
void acceptCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

std::string nameOf(const std::string& path) {
    return printable(std::filesystem::path(path).stem().string());
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

ConsoleWidget::ConsoleWidget(Player& player, Device device)
    : m_player(player),
      m_device(std::move(device)),
      m_keyboard(player, [this] { return fileOfStrip(); }) {
    const Size size =
        Settings::windowSize().value_or(ConsoleView::sizeForStrips(m_player.state().strips));
    auto view = std::make_unique<ConsoleView>(Rect{{}, size}, *this);
    m_view = view.get();
    setContentView(std::move(view));
    const QSize room = screen()->availableSize();
    resize(std::min(static_cast<int>(size.width), room.width()),
           std::min(static_cast<int>(size.height), room.height()));
    setWindowTitle(QStringLiteral("Veltra Console"));
    setMinimumSize(460, 320);
    setAcceptDrops(true);
    // The right button and the menu key show them; their keys work without the menu.
    setContextMenuPolicy(Qt::ActionsContextMenu);
    offerActions();
    // Where the desktop wants no animations, nothing glides.
    constexpr double kScrollTime = 0.12;
    if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0)
        m_view->setScrollTime(kScrollTime);
    m_beat = std::make_unique<Beat>(*this);
}

ConsoleWidget::~ConsoleWidget() {
    Settings::setWindowSize({static_cast<float>(width()), static_cast<float>(height())});
    hide();
    Settings::write();
}

void ConsoleWidget::offerActions() {
    const auto offer = [this](const char* name, const QKeySequence& keys, auto reaction) {
        auto* const entry = new QAction(QString::fromUtf8(name), this);
        entry->setShortcut(keys);
        entry->setAutoRepeat(false);
        connect(entry, &QAction::triggered, this, reaction);
        addAction(entry);
        return entry;
    };
    const auto line = [this] {
        auto* const entry = new QAction(this);
        entry->setSeparator(true);
        addAction(entry);
    };
    offer("&Play or stop", Qt::Key_Space, [this] { playWasSwitched(!m_player.state().playing); });
    offer("&Return to start", Qt::Key_Home, [this] { placeWasChosen(0.0); });
    offer("&Loop", Qt::Key_L, [this] { loopWasSwitched(!m_player.state().looping); });
    offer("&Keyboard", Qt::Key_K, [this] { keyboardWasSwitched(!m_keyboard.isOpen()); });
    line();
    offer("&Add files\u2026", QKeySequence(Qt::CTRL | Qt::Key_O), [this] { addFilesWasPressed(); });
    const auto offerMenu = [&](const char* name, auto fill) {
        auto* const menu = new QMenu(this);
        offer(name, {}, [] {})->setMenu(menu);
        connect(menu, &QMenu::aboutToShow, this, [menu, fill] {
            menu->clear();
            fill(*menu);
        });
    };
    offerMenu("Add recent &file", [this](QMenu& menu) { showRecent(menu); });
    offer("&Undo removal", QKeySequence(Qt::CTRL | Qt::Key_Z), [this] { undoWasPressed(); });
    offer("Reset clip li&ghts", Qt::Key_C, [this] { m_view->clearClips(); });
    offer("Next kind of me&ters", Qt::Key_P, [this] {
        constexpr int kKinds = 3;
        showMeters(static_cast<MeterKind>((static_cast<int>(m_view->meterKind()) + 1) % kKinds));
    });
    offerMenu("&Meters show", [this](QMenu& menu) { offerMeterKinds(menu); });
    offerMenu("Mete&r of the music", [this](QMenu& menu) { offerMusicalMeters(menu); });
    showMeters(Settings::meterKind());
    offer("&Next part of the window", Qt::Key_F6, [this] { m_view->focusNextPart(); });
    line();
    offer("&Stop reading waveforms", Qt::Key_Escape, [this] { escape(); });
    offer("Show a &crash report\u2026", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
          [] { demonstrateException(); });
    offer("A&bout Veltra Console", Qt::Key_F1, [this] { showAbout(); });
}

void ConsoleWidget::refresh() {
    if (isInterrupted()) close();
    for (const std::string& problem : m_player.tick())
        m_view->addMessage(problem);
    m_view->update(m_player.look());
    showDevices();
    m_keyboard.refresh();
    m_view->setKeyboardShown(m_keyboard.isOpen());
}

void ConsoleWidget::tell(const std::string& problem) {
    if (!problem.empty()) m_view->addMessage(problem);
}

// Closes what lies on top first.
void ConsoleWidget::escape() {
    if (!m_view->closeMessage()) m_player.stopReading();
}

void ConsoleWidget::showAbout() {
    auto* const box = new QMessageBox(QMessageBox::Information, QStringLiteral("About"),
                                      textOf(aboutText()), QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ConsoleWidget::allMessagesWerePressed(const std::vector<std::string>& messages) {
    std::string all;
    for (const std::string& message : messages)
        all += message + '\n';
    auto* const box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Messages"), textOf(all),
                                      QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->open();
}

// Files.

void ConsoleWidget::addFiles(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        const std::string problem = m_player.add(path);
        tell(problem);
        std::error_code error;
        if (problem.empty())
            Settings::addRecentFile(std::filesystem::absolute(path, error).string());
    }
    refresh();
}

void ConsoleWidget::showRecent(QMenu& menu) {
    for (const std::string& path : Settings::recentFiles())
        menu.addAction(textOf(printable(path)), this, [this, path] { addFiles({path}); });
    if (menu.isEmpty()) menu.addAction(QStringLiteral("None yet"))->setEnabled(false);
}

void ConsoleWidget::showMeters(MeterKind kind) {
    m_player.setMeasuresTruePeaks(kind == MeterKind::TruePeak);
    m_view->setMeterKind(kind);
    if (kind != Settings::meterKind()) Settings::setMeterKind(kind);
}

// An entry that is ticked where it is the present choice.
template <typename Action>
QAction* ConsoleWidget::offerChoice(QMenu& menu, const QString& name, bool isChosen,
                                    Action action) {
    QAction* const entry = menu.addAction(name, this, std::move(action));
    entry->setCheckable(true);
    entry->setChecked(isChosen);
    return entry;
}

void ConsoleWidget::offerMeterKinds(QMenu& menu) {
    constexpr const char* kNames[] = {"&Peaks", "&RMS levels, and peaks dimly", "&True peaks"};
    for (int i = 0; i < 3; ++i) {
        const auto kind = static_cast<MeterKind>(i);
        offerChoice(menu, QString::fromUtf8(kNames[i]), kind == m_view->meterKind(),
                    [this, kind] { showMeters(kind); });
    }
}

void ConsoleWidget::offerMusicalMeters(QMenu& menu) {
    constexpr std::pair<int, int> kMeters[] = {{2, 4}, {3, 4}, {4, 4}, {5, 4}, {6, 4}, {3, 8},
                                               {5, 8}, {6, 8}, {7, 8}, {9, 8}, {12, 8}};
    const ConsoleState& state = m_player.state();
    for (const auto& meter : kMeters) {
        offerChoice(menu, QStringLiteral("%1/%2").arg(meter.first).arg(meter.second),
                    meter == std::pair(state.beatsPerBar, state.beatUnit),
                    [this, meter] { meterWasSet(meter.first, meter.second); });
    }
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
    const auto& strips = m_player.state().strips;
    const auto strip = std::find_if(strips.begin(), strips.end(),
                                    [key](const StripState& each) { return each.key == key; });
    if (strip == strips.end()) return;
    const std::string name = nameOf(strip->path);
    m_player.remove(key);
    m_view->offerUndo(name);
    refresh();
}

void ConsoleWidget::undoWasPressed() {
    m_player.undoRemove();
    m_view->withdrawUndo();
    refresh();
}

void ConsoleWidget::stripWasMoved(StripKey key, int place) {
    m_player.move(key, place);
    refresh();
}

// Menus.

QPoint ConsoleWidget::below(const View& view) const {
    const Rect rect = view.convertRectToView(view.bounds(), nullptr);
    return mapToGlobal(
        QPoint(static_cast<int>(rect.minX()), height() - static_cast<int>(rect.minY()) + 4));
}

// To be filled before it pops up, so that it finds its place by its size.
QMenu* ConsoleWidget::makeMenu() {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

void ConsoleWidget::stripMenuWasPressed(StripKey key, View& button) {
    const auto& strips = m_player.state().strips;
    const auto strip = std::find_if(strips.begin(), strips.end(),
                                    [key](const StripState& each) { return each.key == key; });
    if (strip == strips.end()) return;
    const auto place = static_cast<int>(strip - strips.begin());
    const bool isLast = place + 1 == static_cast<int>(strips.size());
    QMenu* const menu = makeMenu();
    const auto offer = [&](const char* name, bool isEnabled, auto reaction) {
        menu->addAction(QString::fromUtf8(name), this, reaction)->setEnabled(isEnabled);
    };
    offer("Move to the &left", place > 0, [=, this] { stripWasMoved(key, place - 1); });
    offer("Move to the &right", !isLast, [=, this] { stripWasMoved(key, place + 1); });
    offer("Gain and pan as at &first", strip->gainDecibels != 0.0 || strip->pan != 0.0, [=, this] {
        gainWasSet(key, 0.0);
        panWasSet(key, 0.0);
    });
    menu->addSeparator();
    offer("Re&move", true, [=, this] { removeStripWasPressed(key); });
    menu->popup(below(button));
}

void ConsoleWidget::chooseDevice(const Device& device) {
    const std::string problem = m_player.chooseDevice(device.id, device.rate, device.blockFrames);
    if (problem.empty()) m_device = device;
    tell(problem);
    refresh();
}

// What does not depend on the sound systems is there at once; the devices join when they are known.
void ConsoleWidget::deviceMenuWasPressed(View& button) {
    m_player.askForDevices();
    m_deviceMenu = makeMenu();
    offerDevice(*m_deviceMenu, QStringLiteral("The default device"), "auto");
    m_beforeDevices = m_deviceMenu->addAction(QStringLiteral("Looking for devices\u2026"));
    m_beforeDevices->setEnabled(false);
    offerDevice(*m_deviceMenu, QStringLiteral("None: play in silence"), "null");
    const auto offerValues = [this](const QString& title, auto Device::*setting, const auto& values,
                                    const QString& nameOfNone, const QString& nameOfOthers) {
        QMenu* const menu = m_deviceMenu->addMenu(title);
        for (const auto value : values) {
            Device device = m_device;
            device.*setting = value;
            offerSetting(*menu, value == 0 ? nameOfNone : nameOfOthers.arg(value), device);
        }
    };
    offerValues(QStringLiteral("Buffer"), &Device::blockFrames, kBlocks,
                QStringLiteral("The device's own"), QStringLiteral("%1 frames"));
    offerValues(QStringLiteral("Sample rate"), &Device::rate, kRates,
                QStringLiteral("That of the first file"), QStringLiteral("%1 Hz"));
    m_deviceMenu->popup(below(button));
}

QAction* ConsoleWidget::offerSetting(QMenu& where, const QString& name, const Device& device) {
    const bool isChosen = device.id == m_device.id && device.rate == m_device.rate &&
                          device.blockFrames == m_device.blockFrames;
    return offerChoice(where, name, isChosen, [this, device] { chooseDevice(device); });
}

QAction* ConsoleWidget::offerDevice(QMenu& where, const QString& name, const std::string& id) {
    Device device = m_device;
    device.id = id;
    return offerSetting(where, name, device);
}

void ConsoleWidget::showDevices() {
    const auto devices = m_player.takeDevices();
    if (!devices || m_deviceMenu == nullptr) return;
    for (const DeviceInfo& device : *devices) {
        QAction* const entry =
            offerDevice(*m_deviceMenu, textOf(printable(device.name)), device.id);
        m_deviceMenu->insertAction(m_beforeDevices, entry);
    }
    m_deviceMenu->removeAction(m_beforeDevices);
}

// The desk and the transport.

void ConsoleWidget::gainWasSet(StripKey key, double decibels) {
    m_player.setGain(key, decibels);
}

void ConsoleWidget::panWasSet(StripKey key, double pan) {
    m_player.setPan(key, pan);
}

void ConsoleWidget::muteWasSwitched(StripKey key, bool muted) {
    m_player.setMuted(key, muted);
}

void ConsoleWidget::soloWasSwitched(StripKey key, bool soloed) {
    m_player.setSoloed(key, soloed);
}

std::int64_t ConsoleWidget::framesOf(double seconds) const {
    return std::llround(seconds * m_player.state().rate);
}

void ConsoleWidget::playWasSwitched(bool playing) {
    m_player.setPlaying(playing);
    refresh();
}

void ConsoleWidget::placeWasChosen(double seconds) {
    m_player.locate(framesOf(seconds));
    refresh();
}

// Where no loop has been drawn it is all of the longest file.
void ConsoleWidget::loopWasSwitched(bool looping) {
    const ConsoleState& state = m_player.state();
    std::int64_t begin = state.loopBegin;
    std::int64_t end = state.loopEnd;
    if (looping && end <= begin) {
        begin = 0;
        for (const StripState& strip : state.strips) {
            const double length =
                static_cast<double>(strip.meter.framesTotal) / std::max(strip.format.rate, 1);
            end = std::max<std::int64_t>(end, std::llround(length * state.rate));
        }
    }
    m_player.setLoop(looping, begin, end);
    refresh();
}

void ConsoleWidget::loopWasChosen(double begin, double end) {
    m_player.setLoop(true, framesOf(begin), framesOf(end));
    refresh();
}

// The strip that has the keyboard, else the first one.
std::string ConsoleWidget::fileOfStrip() const {
    const StripView* const focused = m_view->row().focused();
    const auto& strips = m_player.state().strips;
    const auto strip =
        std::find_if(strips.begin(), strips.end(), [focused](const StripState& each) {
            return focused != nullptr && each.key == focused->key();
        });
    if (strip != strips.end()) return strip->path;
    return strips.empty() ? std::string() : strips.front().path;
}

void ConsoleWidget::openKeyboard(bool takesKeys) {
    const QRect frame = geometry();
    m_keyboard.open({{static_cast<float>(frame.x()), static_cast<float>(frame.y())},
                     {static_cast<float>(frame.width()), static_cast<float>(frame.height())}},
                    takesKeys);
}

void ConsoleWidget::keyboardWasSwitched(bool open) {
    if (open) {
        openKeyboard(true);
    } else {
        m_keyboard.close();
    }
    refresh();
}

void ConsoleWidget::tempoWasSet(double beatsPerMinute) {
    m_player.setTempo(beatsPerMinute);
}

void ConsoleWidget::meterWasSet(int beatsPerBar, int beatUnit) {
    m_player.setMeter(beatsPerBar, beatUnit);
}

void ConsoleWidget::outputGainWasSet(double decibels) {
    m_player.setOutputGain(decibels);
}

void ConsoleWidget::outputBalanceWasSet(double balance) {
    m_player.setOutputBalance(balance);
}

void ConsoleWidget::dimWasSwitched(bool dimmed) {
    m_player.setDimmed(dimmed);
}

void ConsoleWidget::monoWasSwitched(bool mono) {
    m_player.setMono(mono);
}

bool ConsoleWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
            if (!event->spontaneous() && KeyboardDesk::wasOpen()) openKeyboard(false);
            break;
        case QEvent::Close:
            m_keyboard.leave();
            break;
        case QEvent::DragEnter: {
            auto* const drag = static_cast<QDragEnterEvent*>(event);
            if (!drag->mimeData()->hasUrls()) break;
            acceptCopy(*drag);
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
            acceptCopy(*drop);
            addFiles(paths);
            return true;
        }
        default:
            break;
    }
    return ViewWidget::event(event);
}

}  // namespace veltra::console
