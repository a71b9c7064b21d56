// SPDX-License-Identifier: MIT
#include "keyboard_desk.h"

#include "../test_recordings.h"
#include "console_widget.h"
#include "keyboard_pad.h"
#include "settings.h"
#include "test_layout.h"
#include "testing/pictured.h"
#include "veltra/base/testing/prelude.h"

#include <QApplication>
#include <QKeyEvent>
#include <QtTest>

namespace veltra::console::testing {
namespace {

// Places of keys, on the hardware.
const std::map<char, std::uint16_t> kPlaces{{'a', 38},  {'s', 39}, {'k', 45},
                                            {'\'', 48}, {'z', 52}, {'x', 53}};

struct Notes final : KeyboardDelegate {
    std::string told;  // since it was looked at
    std::string take() { return std::exchange(told, {}); }
    void add(const std::string& what) { told += (told.empty() ? "" : " ") + what; }
    void noteWasPressed(int note, int velocity) override {
        add(std::to_string(note) + ':' + std::to_string(velocity));
    }
    void noteWasReleased(int note) override { add('-' + std::to_string(note)); }
    void allNotesWereReleased() override { add("all"); }
    void sustainWasSwitched(bool isOn) override { add(isOn ? "pedal" : "no pedal"); }
    void fileWasSwitched(bool isOn) override { add(isOn ? "file" : "tone"); }
    void keyboardWasClosed() override { add("closed"); }
};

// The keyboard window without a window of the system.
class Board : public Pictured {
public:
    Board() : Pictured({900, 292}) {
        auto tools = std::make_unique<KeyboardTools>(Rect{{0, 262}, {900, 30}}, notes);
        m_tools = tools.get();
        m_pad = &show(std::make_unique<KeyboardPad>(Rect{{}, {900, 262}}, notes, *m_tools));
        m_pad->addSubview(std::move(tools));
        window().makeFirstResponder(&m_pad->keys());
    }
    ~Board() { window().setContentView(nullptr); }

    Notes notes;
    KeyboardPad& pad() { return *m_pad; }
    KeyboardTools& tools() { return *m_tools; }

    // Presses, repeats and releases keys: "+a *a -a". Returns what was told.
    std::string play(const std::string& script, ModifierFlags flags = {}) {
        std::istringstream words(script);
        for (std::string word; words >> word;) {
            const EventType type = word[0] == '-' ? EventType::KeyUp : EventType::KeyDown;
            key(u'?', flags, kPlaces.at(word[1]), type, word[0] == '*');
        }
        return notes.take();
    }

private:
    KeyboardPad* m_pad;
    KeyboardTools* m_tools;
};

TEST(KeyboardPad, PlaysByThePlacesOfKeysOnceForEachPress) {
    Board board;
    EXPECT_EQ(board.play("+a *a +'"), "60:100 77:100");
    EXPECT_EQ(board.pad().keys().accessibilityValueText(), "F4 pressed");
    EXPECT_FALSE(board.pad().keys().focusShape());
    board.key(kLeftArrowCharacter);
    EXPECT_EQ(board.pad().keys().accessibilityValueText(), "E4");
    EXPECT_TRUE(board.pad().keys().focusShape());
    EXPECT_TRUE(board.pad().keys().isNotePressed(60));
    // A key keeps its note while the octave changes.
    EXPECT_EQ(board.play("+x *x"), "");
    EXPECT_EQ(board.pad().firstKey(), 35U);
    EXPECT_EQ(board.tools().picker().keyRange(), (KeyRange{35, KeyboardPad::kWhiteKeys}));
    EXPECT_EQ(board.pad().lowestPlayed(), 72);
    board.tools().setVelocity(31);
    EXPECT_EQ(board.play("+s -a -s"), "74:31 -60 -74");
    EXPECT_EQ(board.play("+a", kControlKeyMask) + board.play("-a"), "");
    // Two keys and the pointer on one note: the last one ends it.
    EXPECT_EQ(board.play("+a +z +k"), "72:31");
    const Point onC4{16.0F + 868.0F / 22.0F * 14.5F, 30.0F};
    board.send(EventType::LeftMouseDown, onC4);
    EXPECT_EQ(board.play("-a -k"), "");
    EXPECT_TRUE(board.pad().keys().isNotePressed(72));
    board.send(EventType::LeftMouseUp, onC4);
    EXPECT_EQ(board.notes.take(), "-72");
    // The ends of the keyboard.
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(board.play("+x"), "");
    EXPECT_EQ(board.pad().lowestPlayed(), 108);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(board.play("+z"), "");
    EXPECT_EQ(board.pad().firstKey(), 0U);
    board.key(kEscapeCharacter);
    EXPECT_EQ(board.notes.take(), "closed");
}

TEST(KeyboardPad, LetsEverythingGoWithTheKeysOfTheComputer) {
    Board board;
    board.play("+a +s");
    board.send(EventType::LeftMouseDown, {30.0F, 30.0F});
    board.notes.take();
    board.window().keyStateDidChange(false);
    const std::string told = board.notes.take();
    for (const char* const note : {"-60", "-62", "-48", "all"})
        EXPECT_NE(told.find(note), std::string::npos) << told;
    EXPECT_FALSE(board.pad().keys().isNotePressed(60));
    EXPECT_EQ(board.play("-a"), "");
    board.window().activeStateDidChange(true);
    EXPECT_EQ(board.notes.take(), "");
}

TEST(KeyboardPad, ToolsAskAndKeysLightUp) {
    const GermanKeys layout;
    Board board;
    board.tools().showFile("", false);
    const auto part = [&](const char* name) { return find(board.tools(), name); };
    const auto click = [&](const char* name) {
        ASSERT_NE(part(name), nullptr) << name;
        part(name)->performAccessibilityAction(AccessibilityAction::Press);
    };
    click("Sustain");
    click("Play a file at pitch");  // there is none
    board.tools().showFile("", true);
    click("Play a file at pitch");
    EXPECT_EQ(board.notes.take(), "pedal file");
    board.tools().showFile("loop.wav", false);
    EXPECT_NE(part("loop.wav"), nullptr);
    click("Play a file at pitch");
    EXPECT_EQ(board.notes.take(), "tone");
    part("key range")->setAccessibilityNumber(30);
    EXPECT_EQ(board.pad().lowestPlayed(), 72);
    part("key range")->setAccessibilityNumber(28);
    for (const int velocity : {0, 64, 900}) {
        board.tools().setVelocity(velocity);
        EXPECT_EQ(board.tools().velocity(), std::clamp(velocity, 1, 127));
    }

    // What stands on white keys, counted from the left, above their names.
    std::shared_ptr<const Image> image;
    const auto colorAt = [&](int key, int right, int up) {
        const float width = 868.0F / 22.0F;
        const auto x = static_cast<std::int32_t>(16.0F + width * (static_cast<float>(key) + 0.5F));
        return image->pixelAt(x + right, 292 - 16 - up);
    };
    const auto inkAt = [&](int key) {
        image = board.draw();
        int ink = 0;
        for (int up = 51; up < 61; ++up) {
            for (int right = -5; right < 6; ++right)
                ink += colorAt(key, right, up) != colorAt(key, 10, up) ? 1 : 0;
        }
        return ink;
    };
    EXPECT_EQ(inkAt(6), 0);
    EXPECT_GT(inkAt(7), 8);  // A, on the second C
    EXPECT_EQ(inkAt(18), 0);
    const auto before = colorAt(7, 12, 30);
    board.play("+a");
    EXPECT_GT(inkAt(7), 8);
    EXPECT_NE(colorAt(7, 12, 30), before);
}

TEST(KeyboardDesk, IsHeardAndRemembersWhatWasSet) {
    const auto keyboard = []() -> QWidget* {
        for (QWidget* const each : QApplication::topLevelWidgets())
            if (each->windowTitle() == QStringLiteral("Keyboard") && each->isVisible()) return each;
        return nullptr;
    };
    const auto send = [&](QEvent::Type type, int key, std::uint32_t scanCode) {
        QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0, QStringLiteral("?"));
        QApplication::sendEvent(keyboard(), &event);
    };
    const auto waitFor = [](auto condition) { return QTest::qWaitFor(condition, 60'000); };
    const std::string file = counting("played.wav", 30'000);
    {
        Player player(Device::Null);
        ConsoleWidget widget(player, Device::Null);
        widget.show();
        EXPECT_EQ(keyboard(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget, 60'000));
        QTest::keyClick(&widget, Qt::Key_K);
        ASSERT_NE(keyboard(), nullptr);
        send(QEvent::KeyPress, Qt::Key_Q, kPlaces.at('a'));  // another layout's letter
        EXPECT_TRUE(waitFor([&] { return player.look().outputPeaks[0] > 0.01F; }));
        send(QEvent::KeyRelease, Qt::Key_Q, kPlaces.at('a'));
        EXPECT_TRUE(waitFor([&] { return player.look().outputPeaks[0] == 0.0F; }));
        EXPECT_FALSE(player.look().playing);
        // The first file still chooses the rate, and is played as soon as it is read.
        EXPECT_EQ(player.look().rate, 48000);
        widget.addFiles({file});
        EXPECT_EQ(player.look().rate, 44100);
        EXPECT_TRUE(waitFor([&] { return player.look().playing; }));
        player.keys().playFile(file);
        EXPECT_TRUE(waitFor([&] { return !player.keys().isReading(); }));
        player.keys().playFile("/nowhere.wav");
        EXPECT_TRUE(waitFor([&] { return !player.keys().isReading(); }));
        EXPECT_EQ(player.keys().file(), file);
        send(QEvent::KeyPress, Qt::Key_X, kPlaces.at('x'));
        widget.close();
        EXPECT_EQ(keyboard(), nullptr);
    }
    EXPECT_TRUE(Settings::keyboard().isOpen);
    Player player(Device::Null);
    ConsoleWidget widget(player, Device::Null);
    widget.show();
    ASSERT_NE(keyboard(), nullptr);
    EXPECT_EQ(player.keys().file(), file);
    send(QEvent::KeyPress, Qt::Key_Escape, 9);
    EXPECT_EQ(keyboard(), nullptr);
    EXPECT_EQ(Settings::keyboard().firstKey, 35U);
    EXPECT_FALSE(Settings::keyboard().isOpen);
}

}  // namespace
}  // namespace veltra::console::testing
