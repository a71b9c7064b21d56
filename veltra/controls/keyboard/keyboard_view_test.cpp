// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_view.h"

#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using testing::HostedView;
using testing::RecordingCanvas;
using testing::Shown;

struct Player : Anchored, KeyboardViewDelegate {
    void keyboardViewDidPressNote(KeyboardView&, std::int32_t note, std::int32_t force) override {
        velocity = force;
        tell("+", note);
    }
    void keyboardViewDidReleaseNote(KeyboardView&, std::int32_t note) override { tell("-", note); }
    void tell(const char* what, std::int32_t note) {
        told += what + std::to_string(note) + " ";
        if (--callsToLive == 0) window.reset();
        if (const auto reaction = std::exchange(react, nullptr)) reaction();
    }
    std::string take() { return std::exchange(told, {}); }
    std::string told;
    std::int32_t velocity = 0;
    int callsToLive = 0;
    std::function<void()> react;  // to the next one
    std::unique_ptr<Shown<KeyboardView>> window;
};

class OnScreenKeyboard : public ::testing::Test {
protected:
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
    Player player;
    KeyboardView* keys = nullptr;

    OnScreenKeyboard() { show(); }
    // An octave and a C from middle C, white keys of 50 points.
    void show() {
        player.window = std::make_unique<Shown<KeyboardView>>(Rect{{}, {400, 100}});
        keys = &player.window->view;
        keys->setKeyRange({35, 8});
        keys->setDelegate(&player);
        player.window->window.makeFirstResponder(keys);
        player.take();
    }
    HostedView& host() const { return *player.window; }
    // The middle of the foot of the white key, counted from middle C; the window's y points up.
    static Point foot(int key) { return {25.0F + 50.0F * static_cast<float>(key), 10.0F}; }
    void space(EventType type, bool isRepeat = false) {
        Event event = host().eventAt(type, {});
        event.charactersIgnoringModifiers = u" ";
        event.isRepeat = isRepeat;
        Application::current().postEvent(event);
    }
};

TEST_F(OnScreenKeyboard, ThePointerGlidesFromKeyToKey) {
    host().press(foot(0));
    EXPECT_EQ(player.velocity, 114);
    EXPECT_TRUE(keys->isNotePressed(60));
    for (const Point point : {Point{50, 80}, Point{51, 80}, foot(1), Point{500, 10}, foot(7)})
        host().drag(point);
    host().release(foot(7));
    host().drag(foot(2));
    EXPECT_EQ(player.take(), "+60 -60 +61 -61 +62 -62 +72 -72 ");
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
    keys->fingerUp(7);
    keys->releaseAll();
    EXPECT_EQ(player.take(), "+62 -62 -60 ");
    keys->fingerDown(1, {25, 90});
    player.react = [&] { keys->fingerMoved(1, {125, 90}); };
    keys->fingerMoved(1, {75, 90});  // is elsewhere by the time that C has been let go
    keys->fingerUp(1);
    EXPECT_EQ(player.take(), "+60 -60 +64 -64 ");
    keys->fingerDown(1, {25, 90});
    player.react = [&] { keys->setFrameSize({800, 100}); };
    keys->setKeyRange({36, 8});
    keys->fingerDown(1, {75, 90});
    EXPECT_EQ(player.take(), "+60 -60 +62 ") << "its keys are 100 points wide";
}

TEST_F(OnScreenKeyboard, NoNoteHangsAndItSurvivesItsDeletionInEachCallback) {
    const auto press = [&] { host().press(foot(0)); };
    const auto hold = [&] { space(EventType::KeyDown); };
    constexpr KeyRange kLower{34, 8};
    const auto tap = [&] { host().touch(EventType::TouchBegan, foot(0), 5); };
    const std::pair<std::function<void()>, std::function<void()>> acts[] = {
        {tap, [&] { host().touch(EventType::TouchEnded, foot(0), 5); }},
        {tap, [&] { host().touch(EventType::TouchCancelled, foot(0), 5); }},
        {tap, [&] { keys->setHidden(true); }},
        {press, [&] { keys->setHidden(true); }},
        {press, [&] { host().window.visibilityDidChange(false); }},
        {press, [&] { keys->setEnabled(false); }},
        {press, [&] { keys->setDelegate(nullptr); }},
        {press, [&] { keys->setKeyRange(kLower); }},
        {press, [&] { keys->setFirstNote(2); }},
        {press, [&] { host().window.setContentView(nullptr); }},
        {press, [&] { player.window = nullptr; }},
        {hold, [&] { space(EventType::KeyUp); }},
        {hold, [&] { host().window.keyStateDidChange(false); }},
        {hold, [&] { host().window.makeFirstResponder(nullptr); }},
        {[&] { keys->performAccessibilityAction(AccessibilityAction::Press); },
         [&] { loop.advance(1.0); }},
    };
    for (const auto& [begin, end] : acts) {
        show();
        begin();
        EXPECT_EQ(player.take(), "+60 ");
        end();
        EXPECT_EQ(player.take(), "-60 ");
        for (const int last : {1, 2}) {
            show();
            player.callsToLive = last;
            begin();
            if (last == 2) end();
            EXPECT_EQ(player.window, nullptr);
        }
    }
    player.take();
    {
        KeyboardView windowless(Rect{{}, {400, 100}});
        windowless.setKeyRange({35, 8});
        windowless.setDelegate(&player);
        windowless.fingerDown(1, {25, 90});
    }
    EXPECT_EQ(player.take(), "+60 -60 ");
}

TEST_F(OnScreenKeyboard, TheKeysOfTheComputerLeadAlongAndPlay) {
    const std::pair<char16_t, std::int32_t> rows[] = {
        {kRightArrowCharacter, 61}, {kPageUpCharacter, 72},    {kLeftArrowCharacter, 71},
        {kPageDownCharacter, 60},   {kLeftArrowCharacter, 60}, {kEndCharacter, 72},
        {kHomeCharacter, 60}};
    for (const auto& [key, note] : rows) {
        host().key(key);
        EXPECT_EQ(keys->focusedNote(), note);
    }
    space(EventType::KeyDown);
    host().key(kRightArrowCharacter);
    space(EventType::KeyDown, true);
    space(EventType::KeyUp, true);
    EXPECT_EQ(player.take(), "+60 ");
    EXPECT_EQ(player.velocity, 100);
    keys->setKeyRange({0, 7});
    EXPECT_EQ(keys->focusedNote(), 0);
}

TEST_F(OnScreenKeyboard, AScreenReaderPlaysANoteForAMoment) {
    EXPECT_TRUE(keys->performAccessibilityAction(AccessibilityAction::Increment));
    for (int i = 0; i < 2; ++i) {
        keys->performAccessibilityAction(AccessibilityAction::Press);
        EXPECT_EQ(keys->accessibilityValueText(), "C#3 pressed");
        loop.advance(0.4);
    }
    loop.advance(0.2);
    EXPECT_EQ(player.take(), "+61 -61 +61 -61 ");
    EXPECT_TRUE(keys->setAccessibilityNumber(1e300));
    EXPECT_EQ(keys->accessibilityNumber()->value, 72.0);
    EXPECT_FALSE(keys->setAccessibilityNumber(std::nan("")));
    keys->setEnabled(false);
    EXPECT_FALSE(keys->performAccessibilityAction(AccessibilityAction::Press));
    host().click(foot(0));
    EXPECT_EQ(player.take(), "");
}

TEST_F(OnScreenKeyboard, ShowsTheNotesOfTheHostAndDrawsOnlyThose) {
    const auto texts = [&] {
        return RecordingCanvas::only(RecordingCanvas::What::Text, host().display()).size();
    };
    keys->setNeedsDisplay();
    EXPECT_EQ(texts(), 2U) << "C3 and C4";
    for (const std::int32_t note : {72, 72, -1, 128, 20})  // the last one is not in sight
        keys->setNotePressed(note, true);
    EXPECT_EQ(host().port.invalid.size(), 1U);
    EXPECT_EQ(texts(), 1U);
    EXPECT_TRUE(keys->isNotePressed(72) && keys->isNotePressed(20) && !keys->isNotePressed(-1));
    keys->clearPressedNotes();
    EXPECT_FALSE(keys->isNotePressed(72));
    keys->setKeyRange({74, 20});
    EXPECT_EQ(keys->keyRange(), (KeyRange{55, 20}));
    keys->setFirstNote(120);
    EXPECT_EQ(keys->keyRange(), (KeyRange{0, 5}));
}

}  // namespace
}  // namespace veltra
