// SPDX-License-Identifier: MIT
// The real window in the hands of somebody who presses everything: seeded clicks, drags, wheels,
// keys, drops of good, damaged and missing files, sizes, and devices that fail and come back.
//
//   console_random_use_test [--seconds N] [--seed N]
//
// What is done depends on the seed alone; when, on the machine. A hang ends the program with the
// stack of the main thread.
#include "../test_recordings.h"
#include "../testing/fake_output.h"
#include "console_widget.h"
#include "testing/pictured.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/fake_user.h"
#include "veltra/qt/qt_port.h"

#include <QApplication>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <QtTest>
#include <chrono>
#include <csignal>

#include <execinfo.h>
#include <unistd.h>

namespace veltra::console::testing {
namespace {

using namespace std::chrono_literals;

double secondsToRun = 6.0;
unsigned seed = 1;

// Aborts when the event loop has not turned while the main thread worked or slept for five seconds;
// that it waits for a processor does not count.
class Watchdog {
public:
    Watchdog() {
        std::signal(SIGABRT, [](int) {
            std::array<void*, 64> frames{};
            backtrace_symbols_fd(frames.data(), backtrace(frames.data(), 64), STDERR_FILENO);
            std::signal(SIGABRT, SIG_DFL);
            std::raise(SIGABRT);
        });
        QObject::connect(&m_beat, &QTimer::timeout, [this] { m_turns.fetch_add(1); });
        m_beat.start(50);
        m_thread = std::jthread([this, main = pthread_self()](const std::stop_token& stop) {
            std::uint64_t before = 0;
            double worked = workOf(main);
            int asleep = 0;
            while (!stop.stop_requested() && workOf(main) - worked < 5.0 && asleep < 50) {
                std::this_thread::sleep_for(100ms);
                asleep = doesMainThreadSleep() ? asleep + 1 : 0;
                if (std::exchange(before, m_turns.load()) == m_turns.load()) continue;
                worked = workOf(main);
                asleep = 0;
            }
            if (stop.stop_requested()) return;
            static_cast<void>(std::fputs("the event loop hangs in:\n", stderr));
            pthread_kill(main, SIGABRT);
        });
    }

private:
    // Seconds of a processor.
    static double workOf(pthread_t thread) {
        clockid_t clock{};
        timespec time{};
        pthread_getcpuclockid(thread, &clock);
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }
    static bool doesMainThreadSleep() {
        const std::string facts = contents("/proc/self/stat");
        return facts.find(") R") == std::string::npos;
    }

    QTimer m_beat;
    std::atomic<std::uint64_t> m_turns{0};
    std::jthread m_thread;
};

// Devices whose fate the test decides.
const std::array worlds{std::make_shared<World>(), std::make_shared<World>(),
                        std::make_shared<World>()};

Player::SoundSystems fickleSystems() {
    Player::SoundSystems systems;
    systems.open = [](const Device& device, std::int32_t rate, std::string& problem) {
        const auto number =
            device.id == "auto" ? 0U : static_cast<unsigned>(device.id.back() - '0');
        std::unique_ptr<AudioOutput> output;
        if (number >= worlds.size() || !worlds[number]->isThere) {
            problem = device.id + ": is missing";
        } else {
            const std::uint32_t block = device.blockFrames > 0 ? device.blockFrames : 512;
            output = std::make_unique<FakeOutput>(worlds[number],
                                                  "device " + std::to_string(number), rate, block);
        }
        return output;
    };
    systems.list = [] {
        std::this_thread::sleep_for(200ms);
        std::vector<DeviceInfo> devices;
        for (const char* const id : {"device 0", "device 1", "device 2"})
            devices.push_back({id, id, {44100, 48000}, false});
        return devices;
    };
    return systems;
}

// Each letter, digit and sign is its own key.
constexpr std::string_view kSigns = " LCMSOZE0159.-+VAXK";
constexpr Qt::Key kKeys[] = {Qt::Key_Home,     Qt::Key_End,     Qt::Key_F6,     Qt::Key_Tab,
                             Qt::Key_Left,     Qt::Key_Backtab, Qt::Key_Right,  Qt::Key_Up,
                             Qt::Key_Down,     Qt::Key_PageUp,  Qt::Key_Return, Qt::Key_PageDown,
                             Qt::Key_F1,       Qt::Key_Enter,   Qt::Key_Escape, Qt::Key_Delete,
                             Qt::Key_Backspace};

class User {
public:
    explicit User(unsigned start) : m_random(start) {
        QObject::connect(&m_dialogs, &QTimer::timeout, [this] { answerWhatIsOpen(); });
        m_dialogs.start(20);
        makeFiles();
        startAnew();
    }
    ~User() { leave(); }

    void run(double howLong) {
        const auto end = std::chrono::steady_clock::now() +
                         std::chrono::duration_cast<std::chrono::milliseconds>(
                             std::chrono::duration<double>(howLong));
        while (std::chrono::steady_clock::now() < end && !::testing::Test::HasFailure()) {
            act();
            QCoreApplication::processEvents();
            if (below(6) == 0) QTest::qWait(below(40));
            if (++m_events % 200 == 0) check();
            if (m_events % 3000 == 0) startAnew();
        }
        check();
    }

    void report() const {
        std::printf("seed %u, %d events", seed, m_events);
        for (const auto& [what, count] : m_done)
            std::printf(", %d %s", count, what.c_str());
        std::printf("\n");
    }

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    bool chance(int percent) { return below(100) < percent; }

    void makeFiles() {
        const std::string tabla = kSamples + "loop_tabla.flac";
        m_files = {tabla,
                   synthetic("six.wav", 48000, "7 sine 300 gain -6 remix 1 1 1 1 1 1"),
                   synthetic("loud.wav", 44100, "2 sine 1000 gain 9 remix 1 1"),
                   synthetic("brief.wav", 48000, "0.05 sine 300"),
                   synthetic("long.wav", 8000, "200 sine 300"),
                   recording("loop_tabla", "-b 24", "24.aiff"),
                   cutShort(tabla, 0.5, "cut.flac"),
                   cutShort(recording("loop_tabla", "-b 16", "16.wav"), 0.3, "cut.wav"),
                   folder() + "noise.wav",
                   folder() + "empty.wav",
                   folder() + "missing.wav",
                   folder()};
        std::string noise(5000, '\0');
        std::generate(noise.begin(), noise.end(), [this] { return static_cast<char>(below(256)); });
        writeFile(folder() + "noise.wav", "RIFF" + noise);
        writeFile(folder() + "empty.wav", "");
    }

    void leave() {
        m_widget.reset();
        if (m_player) m_player->finish();
        m_player.reset();
    }
    void startAnew() {
        leave();
        m_player = std::make_unique<Player>(Device{}, fickleSystems());
        m_widget = std::make_unique<ConsoleWidget>(*m_player, Device::Auto);
        m_widget->addFiles({m_files[0], m_files[1]});
        m_widget->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_widget.get(), 60'000));
        ++m_done["starts"];
    }

    // What the window shows is what plays.
    void check() {
        QTest::qWait(200);  // until nothing glides
        auto* const view = dynamic_cast<ConsoleView*>(m_widget->contentView());
        ASSERT_NE(view, nullptr);
        const auto& strips = m_player->state().strips;
        const auto& shown = view->row().strips();
        ASSERT_EQ(shown.size(), strips.size());
        for (std::size_t i = 0; i < strips.size(); ++i)
            EXPECT_EQ(shown[i]->key(), strips[i].key);
        const StripView* const focused = view->row().focused();
        if (focused == nullptr) return;
        const auto at =
            static_cast<int>(std::find(shown.begin(), shown.end(), focused) - shown.begin());
        EXPECT_GE(at, view->row().first());
        EXPECT_LT(at, view->row().first() + view->row().inSight());
    }

    void act() {
        struct Row {
            const char* what;
            int weight;
            void (User::*act)();
        };
        static constexpr Row kRows[] = {
            {"clicks", 30, &User::click},  {"drags", 15, &User::drag},
            {"wheels", 8, &User::wheel},   {"keys", 30, &User::key},
            {"drops", 5, &User::drop},     {"sizes", 4, &User::resize},
            {"fates", 3, &User::turnFate}, {"removals", 3, &User::remove},
            {"moves", 2, &User::reorder}};
        int place = below(100);
        for (const Row& row : kRows) {
            place -= row.weight;
            if (place >= 0) continue;
            ++m_done[row.what];
            return (this->*row.act)();
        }
    }

    QWindow* window() { return m_widget->windowHandle(); }
    Qt::KeyboardModifiers modifiers() {
        constexpr Qt::KeyboardModifier kAll[] = {Qt::ShiftModifier, Qt::ControlModifier,
                                                 Qt::AltModifier};
        return chance(75) ? Qt::KeyboardModifiers() : Qt::KeyboardModifiers(kAll[below(3)]);
    }

    // Mostly on something.
    QPoint somewhere() {
        const auto all = allUnder(*m_widget->contentView());
        for (const AccessibilityElement* const each : all)
            m_heard += each->accessibilityName().size() + each->accessibilityValueText().size();
        if (all.empty() || chance(20)) return {below(m_widget->width()), below(m_widget->height())};
        const auto which = static_cast<std::size_t>(below(static_cast<int>(all.size())));
        const Rect frame = accessibilityFrameInWindow(*all[which]);
        const auto within = [&](float from, float size) {
            return static_cast<int>(from + size * static_cast<float>(below(100)) * 0.01F);
        };
        return {within(frame.minX(), frame.size.width),
                m_widget->height() - within(frame.minY(), frame.size.height)};
    }

    void click() {
        const QPoint at = somewhere();
        QTest::mouseMove(window(), at);
        if (chance(10)) return QTest::mouseClick(window(), Qt::RightButton, {}, at);
        if (chance(10)) return QTest::mouseDClick(window(), Qt::LeftButton, modifiers(), at);
        QTest::mouseClick(window(), Qt::LeftButton, modifiers(), at);
    }
    void drag() {
        QPoint at = somewhere();
        const Qt::KeyboardModifiers held = modifiers();
        QTest::mouseMove(window(), at);
        QTest::mousePress(window(), Qt::LeftButton, held, at);
        for (int moves = below(8); moves > 0; --moves) {
            at += QPoint(below(81) - 40, below(81) - 40);
            QTest::mouseMove(window(), at);
            if (chance(3)) key();
            if (chance(2)) resize();
            if (chance(2)) remove();
        }
        QTest::mouseRelease(window(), Qt::LeftButton, held, at);
    }
    void wheel() {
        const QPoint at = somewhere();
        const QPoint turn =
            chance(80) ? QPoint(0, below(5) * 120 - 240) : QPoint(below(99) - 49, 0);
        QWheelEvent event(at, m_widget->mapToGlobal(at), {}, turn, Qt::NoButton, modifiers(),
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_widget.get(), &event);
    }
    void key() {
        const int which = below(static_cast<int>(std::size(kKeys) + kSigns.size()));
        const auto sign = static_cast<std::size_t>(which) - std::size(kKeys);
        QTest::keyClick(window(), sign < kSigns.size() ? Qt::Key(kSigns[sign]) : kKeys[which],
                        modifiers());
    }
    void drop() {
        QMimeData dropped;
        QList<QUrl> urls;
        for (int count = 1 + below(2); count > 0; --count) {
            const auto which = static_cast<std::size_t>(below(static_cast<int>(m_files.size())));
            urls.push_back(QUrl::fromLocalFile(QString::fromStdString(m_files[which])));
        }
        if (chance(10)) urls.push_back(QUrl(QStringLiteral("http://example.org/a.wav")));
        dropped.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &dropped, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(m_widget.get(), &enter);
        if (chance(20) || m_player->state().strips.size() > 24) {
            QDragLeaveEvent gone;
            QApplication::sendEvent(m_widget.get(), &gone);
            return;
        }
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_widget.get(), &drop);
    }
    void resize() {
        if (chance(10)) return m_widget->setVisible(!m_widget->isVisible());
        if (chance(40)) return m_widget->resize(460, 320);
        m_widget->resize(460 + below(1500), 320 + below(1400));
    }
    void turnFate() {
        // Is steady, stands still, runs away, ends, is missing.
        constexpr std::array kSpeeds{1, 0, 100, -1, -1};
        const auto fate = static_cast<std::size_t>(chance(50) ? 0 : below(5));
        World& world = *worlds[static_cast<std::size_t>(below(static_cast<int>(worlds.size())))];
        world.speed = kSpeeds[fate];
        world.isThere = fate != 4;
    }
    void remove() {
        const auto& strips = m_player->state().strips;
        if (strips.empty()) return;
        const auto which = static_cast<std::size_t>(below(static_cast<int>(strips.size())));
        ConsoleDelegate& delegate = *m_widget;
        delegate.removeStripWasPressed(strips[which].key);
        if (chance(30)) delegate.undoWasPressed();
    }
    void reorder() {
        const auto& strips = m_player->state().strips;
        if (strips.empty()) return;
        const int count = static_cast<int>(strips.size());
        ConsoleDelegate& delegate = *m_widget;
        delegate.stripWasMoved(strips[static_cast<std::size_t>(below(count))].key, below(count));
    }

    // Menus and dialogs may have event loops of their own: they are answered from a timer.
    void answerWhatIsOpen() {
        if (!m_widget->isVisible() && chance(20)) m_widget->show();
        if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            constexpr Qt::Key kMenuKeys[] = {Qt::Key_Down,  Qt::Key_Up,     Qt::Key_Down,
                                             Qt::Key_Right, Qt::Key_Return, Qt::Key_Escape};
            ++m_done["answers"];
            QTest::keyClick(menu, kMenuKeys[below(6)]);
            return;
        }
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !chance(20)) return;
        ++m_done["answers"];
        // Never a key: those of this dialog delete and rename files.
        auto* const files = qobject_cast<QFileDialog*>(dialog);
        if (files == nullptr || chance(30)) return dialog->reject();
        const auto which = static_cast<std::size_t>(below(8));
        emit files->filesSelected({QString::fromStdString(m_files[which])});
        dialog->reject();
    }

    std::mt19937 m_random;
    QTimer m_dialogs;
    std::vector<std::string> m_files;
    std::unique_ptr<Player> m_player;
    std::unique_ptr<ConsoleWidget> m_widget;
    std::map<std::string, int> m_done;
    int m_events = 0;
    std::size_t m_heard = 0;
};

TEST(ConsoleWindow, SurvivesRandomUse) {
    SKIP_WITHOUT_RECORDINGS();
    const Watchdog watchdog;
    veltra::testing::FakeUser resuming;
    resuming.answer = AlertAnswer::Alternate;
    User user(seed);
    user.run(secondsToRun);
    user.report();
}

}  // namespace
}  // namespace veltra::console::testing

int main(int argc, char** argv) {
    using namespace veltra::console::testing;
    ::testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string_view option = argv[i];
        if (option == "--seconds") secondsToRun = std::strtod(argv[i + 1], nullptr);
        if (option == "--seed")
            seed = static_cast<unsigned>(std::strtoul(argv[i + 1], nullptr, 10));
    }
    if (!qEnvironmentVariableIsSet("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_CONFIG_HOME", folder().c_str());  // preferences
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    // That a drag leaves the window is no news.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtWarningMsg) std::fprintf(stderr, "%s\n", qPrintable(text));
    });
    veltra::installQtPort();
    return RUN_ALL_TESTS();
}
