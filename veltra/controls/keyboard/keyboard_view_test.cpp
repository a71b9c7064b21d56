// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_view.h"

#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using testing::HostedView;
using testing::RecordingCanvas;

struct Player : Anchored, KeyboardViewDelegate {
    void keyboardViewDidPressNote(KeyboardView&, std::int32_t note, std::int32_t force) override {
        velocity = force;
        tell("+", note);
    }
    void keyboardViewDidReleaseNote(KeyboardView&, std::int32_t note) override { tell("-", note); }
    void tell(const char* what, std::int32_t note) {
        told += what + std::to_string(note) + " ";
        if (victim != nullptr && --callsToLive == 0) victim->reset();
    }
    std::string take() { return std::exchange(told, {}); }
    std::string told;
    std::int32_t velocity = 0;
    std::unique_ptr<HostedView>* victim = nullptr;
    int callsToLive = 1;
};

class OnScreenKeyboard : public ::testing::Test {
protected:
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
    Player player;
    KeyboardView* keys = nullptr;
    std::unique_ptr<HostedView> window = hosted();

    // An octave and a C from middle C, white keys of 50 points.
    std::unique_ptr<HostedView> hosted() {
        auto made = std::make_unique<KeyboardView>(Rect{{}, {400, 100}});
        keys = made.get();
        keys->setKeyRange({35, 8});
        keys->setDelegate(&player);
        return std::make_unique<HostedView>(std::move(made));
    }
    // The middle of the foot of the white key, counted from middle C; the window's y points up.
    static Point foot(int key) { return {25.0F + 50.0F * static_cast<float>(key), 10.0F}; }
    void keyUp(char16_t character) {
        Event event = window->eventAt(EventType::KeyUp, {});
        event.charactersIgnoringModifiers = std::u16string(1, character);
        Application::current().postEvent(event);
    }
};

TEST_F(OnScreenKeyboard, ThePointerGlidesFromKeyToKey) {
    window->press(foot(0));
    EXPECT_EQ(player.velocity, 114);
    EXPECT_TRUE(keys->isNotePressed(60));
    window->drag({50, 80});
    window->drag({51, 80});
    window->drag(foot(1));
    window->drag({500, 10});
    window->drag(foot(7));
    window->release(foot(7));
    EXPECT_EQ(player.take(), "+60 -60 +61 -61 +62 -62 +72 -72 ");
    window->drag(foot(2));
    EXPECT_EQ(player.take(), "");
}

TEST_F(OnScreenKeyboard, FingersShareANoteUntilTheLastOneLetsGo) {
    keys->fingerDown(1, {25, 90});
    keys->fingerDown(2, {75, 90});
    keys->fingerMoved(2, {25, 90});
    keys->fingerUp(1);
    keys->fingerUp(1);
    EXPECT_EQ(player.take(), "+60 +62 -62 ");
    keys->fingerMoved(3, {75, 90});  // is not down
    keys->fingerDown(7, {75, 90});
    keys->fingerUp(2);
    keys->releaseAll();
    EXPECT_EQ(player.take(), "+62 -60 -62 ");
}

TEST_F(OnScreenKeyboard, NoNoteHangs) {
    const std::function<void()> ends[] = {
        [&] { window->window.visibilityDidChange(false); },
        [&] { keys->setEnabled(false), keys->setEnabled(true); },
        [&] {
            keys->setKeyRange({34, 8}), keys->setKeyRange({35, 8});
        },
        [&] { keys->setFirstNote(2), keys->setFirstNote(0); },
        [&] { window->window.setContentView(nullptr); },
    };
    for (const auto& end : ends) {
        window->press(foot(0));
        end();
        EXPECT_EQ(player.take(), "+60 -60 ");
    }
    window = hosted();
    window->press(foot(0));
    window = nullptr;
    EXPECT_EQ(player.take(), "+60 -60 ");
    window = hosted();
    window->window.makeFirstResponder(keys);
    for (const auto& end :
         {std::function<void()>([&] { window->window.keyStateDidChange(false); }),
          std::function<void()>([&] { window->window.makeFirstResponder(nullptr); })}) {
        window->window.makeFirstResponder(keys);
        window->key(u' ');
        end();
        EXPECT_EQ(player.take(), "+60 -60 ");
        window->window.keyStateDidChange(true);
    }
}

TEST_F(OnScreenKeyboard, TheKeysOfTheComputerLeadAlongAndPlay) {
    window->window.makeFirstResponder(keys);
    EXPECT_EQ(keys->focusedNote(), 60);
    const std::pair<char16_t, std::int32_t> rows[] = {
        {kRightArrowCharacter, 61}, {kPageUpCharacter, 72},    {kLeftArrowCharacter, 71},
        {kPageDownCharacter, 60},   {kLeftArrowCharacter, 60}, {kEndCharacter, 72},
        {kHomeCharacter, 60}};
    for (const auto& [key, note] : rows) {
        window->key(key);
        EXPECT_EQ(keys->focusedNote(), note);
    }
    window->key(u' ');
    window->key(u' ');
    window->key(kRightArrowCharacter);
    Event repeated = window->eventAt(EventType::KeyDown, {});
    repeated.charactersIgnoringModifiers = u" ";
    repeated.isRepeat = true;
    Application::current().postEvent(repeated);
    keyUp(u'x');
    EXPECT_EQ(player.take(), "+60 ");
    keyUp(u' ');
    EXPECT_EQ(player.take(), "-60 ");
    EXPECT_EQ(player.velocity, 100);
    keys->setKeyRange({0, 7});
    EXPECT_EQ(keys->focusedNote(), 0);
}

TEST_F(OnScreenKeyboard, AScreenReaderPlaysANoteForAMoment) {
    EXPECT_EQ(keys->accessibilityName(), "keyboard");
    EXPECT_EQ(keys->accessibilityValueText(), "C3");
    EXPECT_TRUE(keys->performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_TRUE(keys->performAccessibilityAction(AccessibilityAction::Press));
    EXPECT_EQ(keys->accessibilityValueText(), "C#3 pressed");
    loop.advance(0.4);
    EXPECT_TRUE(keys->performAccessibilityAction(AccessibilityAction::Press));
    loop.advance(0.4);
    EXPECT_EQ(player.take(), "+61 -61 +61 ");
    loop.advance(0.2);
    EXPECT_EQ(player.take(), "-61 ");
    EXPECT_TRUE(keys->setAccessibilityNumber(1e300));
    EXPECT_EQ(keys->accessibilityNumber()->value, 72.0);
    EXPECT_EQ(keys->accessibilityNumber()->minimum, 60.0);
    EXPECT_FALSE(keys->setAccessibilityNumber(std::nan("")));
    keys->setEnabled(false);
    EXPECT_FALSE(keys->performAccessibilityAction(AccessibilityAction::Press));
    window->click(foot(0));
    EXPECT_EQ(player.take(), "");
}

TEST_F(OnScreenKeyboard, ShowsTheNotesOfTheHostAndDrawsOnlyThose) {
    const auto texts = [&] {
        return RecordingCanvas::only(RecordingCanvas::What::Text, window->display()).size();
    };
    keys->setNeedsDisplay();
    EXPECT_EQ(texts(), 2U) << "C3 and C4";
    keys->setNotePressed(72, true);
    keys->setNotePressed(72, true);
    keys->setNotePressed(-1, true);
    keys->setNotePressed(128, true);
    keys->setNotePressed(20, true);  // is not in sight
    EXPECT_EQ(window->port.invalid.size(), 1U);
    EXPECT_EQ(texts(), 1U);
    EXPECT_TRUE(keys->isNotePressed(72) && keys->isNotePressed(20) && !keys->isNotePressed(-1));
    EXPECT_EQ(player.take(), "");
    keys->clearPressedNotes();
    EXPECT_FALSE(keys->isNotePressed(72) || keys->isNotePressed(20));
    window->move(foot(3));
    window->move(foot(3));
    EXPECT_EQ(window->port.invalid.size(), 2U);
    keys->setKeyRange({74, 20});
    EXPECT_EQ(keys->keyRange(), (KeyRange{55, 20}));
    keys->setFirstNote(120);
    EXPECT_EQ(keys->keyRange(), (KeyRange{0, 5}));
}

TEST_F(OnScreenKeyboard, SurvivesItsDeletionInEachCallback) {
    for (int last = 1; last <= 4; ++last) {
        window = hosted();
        player.victim = &window;
        player.callsToLive = last;
        window->press(foot(0));
        if (window) window->drag(foot(1));
        if (window) window->release(foot(1));
        EXPECT_EQ(window, nullptr);
    }
    const std::function<void()> acts[] = {
        [&] { window->window.makeFirstResponder(keys), window->key(u' '); },
        [&] { keys->performAccessibilityAction(AccessibilityAction::Press); },
        [&] {
            player.callsToLive = 2, window->press(foot(0)), keys->setKeyRange({0, 3});
        },
        [&] { player.callsToLive = 2, window->press(foot(0)), keys->setEnabled(false); },
    };
    for (const auto& act : acts) {
        window = hosted();
        player.callsToLive = 1;
        act();
        EXPECT_EQ(window, nullptr);
        loop.advance(1.0);
    }
}

}  // namespace
}  // namespace veltra
