// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_picker_view.h"

#include "veltra/ui/image_registry.h"
#include "veltra/ui/testing/scripted_port.h"

#include <sstream>

namespace veltra {
namespace {

using testing::RecordingCanvas;
using testing::Shown;

struct Host : Anchored {
    void rangeChanged(DfOctavePickerView& sender) {
        const KeyRange range = sender.keyRange();
        told += std::to_string(range.location) + "+" + std::to_string(range.length) + " ";
        requests = window->port.invalid.size();
        if (hides) window->window.visibilityDidChange(false);
        if (--callsToLive == 0) window.reset();
    }
    std::string told;
    std::size_t requests = 0;  // for redrawing, before the last action
    int callsToLive = 0;
    bool hides = false;
    std::unique_ptr<Shown<DfOctavePickerView>> window;
};

class OctavePicker : public ::testing::Test {
protected:
    testing::ScriptedPort port;
    Host host;
    DfOctavePickerView* picker = nullptr;

    OctavePicker() { show(); }
    void show() {
        host.window = std::make_unique<Shown<DfOctavePickerView>>(
            Rect{{}, DfOctavePickerView::naturalSize(true)}, true);
        picker = &host.window->view;
        picker->setTarget(&host);
        picker->setAction(action<&Host::rangeChanged>());
        host.window->window.makeFirstResponder(picker);
        host.window->display();
        host.told.clear();
    }
    // p80 presses at 80, d86 drags there, r releases; < > are arrows, - + pages, [ ] Home and End,
    // S> an arrow with Shift, e Escape, i and I a screen reader's steps. Returns what was sent.
    std::string drive(const std::string& script) {
        std::istringstream words(script);
        for (std::string word; host.window && words >> word;)
            act(word[0], word.size() > 1 ? std::stof("0" + word.substr(1)) : 0.0F, word.back());
        return std::exchange(host.told, {});
    }
    void act(char what, float x, char last) {
        const std::map<char, char16_t> keys = {
            {'<', kLeftArrowCharacter}, {'>', kRightArrowCharacter}, {'-', kPageDownCharacter},
            {'+', kPageUpCharacter},    {'[', kHomeCharacter},       {']', kEndCharacter},
            {'e', kEscapeCharacter}};
        if (what == 'p') return host.window->press({x, 20});
        if (what == 'd') return host.window->drag({x, 20});
        if (what == 'r') return host.window->release({x, 20});
        if (what == 'i' || what == 'I') {
            picker->performAccessibilityAction(what == 'i' ? AccessibilityAction::Increment
                                                           : AccessibilityAction::Decrement);
            return;
        }
        host.window->key(keys.at(last), what == 'S' ? kShiftKeyMask : ModifierFlags{});
    }
};

struct Row {
    KeyRange range;
    const char* script;
    const char* sent;
    bool allowsResizing = false;
    std::int32_t clickRaster = 7;
    std::int32_t dragRaster = 1;
};

constexpr Row kRows[] = {
    {{10, 10}, "p458 r", "65+10 "},  // not 70
    {{10, 10}, "p2 r", "0+10 "},
    {{30, 10}, "p80 d85.9 d86 d1000 d80 r", "7+10 7+10 8+10 65+10 7+10 "},
    {{10, 10}, "p70 d76 r d300", "11+10 "},  // grabbed where it is
    {{20, 3}, "p82 d200 r", "7+3 "},         // lands short of the pointer: no drag
    {{10, 10}, "p150 d170 r", "24+10 25+10 ", false, 1, 5},
    {{10, 10}, "p67 d55 r", "8+10 "},
    {{10, 10}, "p64 d52 d900 r p127 d0 r", "8+12 19+1 19+1 ", true},
    {{10, 10}, "p123 d129 d-9 r", "10+11 10+1 ", true},
    {{10, 10}, "p70 d100 e d200 r", "15+10 10+10 "},
    {{9, 10}, "> < - - + ] > [ e", "10+10 9+10 2+10 0+10 7+10 65+10 65+10 0+10 "},
    {{64, 10}, "S> S> S<", "64+11 64+11 64+10 ", true},
    {{64, 10}, "S>", "65+10 "},
    {{1, 10}, "i I I", "2+10 1+10 0+10 "},
};

TEST_F(OctavePicker, FollowsPointerAndKeysAndSurvivesItsDeletionInEachAction) {
    for (const Row& row : kRows) {
        const auto begin = [&] {
            show();
            picker->setKeyRange(row.range);
            picker->setAllowsResizing(row.allowsResizing);
            picker->setClickRaster(row.clickRaster);
            picker->setDragRaster(row.dragRaster);
        };
        begin();
        const std::string sent = drive(row.script);
        EXPECT_EQ(sent, row.sent) << row.script;
        for (auto call = std::count(sent.begin(), sent.end(), ' '); call > 0; --call) {
            begin();
            host.callsToLive = static_cast<int>(call);
            drive(row.script);
            EXPECT_EQ(host.window, nullptr) << row.script;
            EXPECT_EQ(port.toolTip, "");
        }
    }
}

TEST_F(OctavePicker, RedrawsTheOldAndTheNewRangeThenSendsToItsTargetAlone) {
    const Rect before = picker->rangeRect();
    EXPECT_EQ(before, (Rect{{66, 0}, {59, 40}}));
    drive("p300 r");
    const auto& asked = host.window->port.invalid;
    EXPECT_EQ(host.requests, 2U);
    EXPECT_EQ(asked[0].intersection(before), before);
    EXPECT_EQ(asked[1].intersection(picker->rangeRect()), picker->rangeRect());
    EXPECT_LT(asked[1].size.width, 80.0F) << "and not the rest";
    picker->setTarget(nullptr);
    Application::current().setDelegate(&host);
    EXPECT_EQ(drive("p30 r"), "");
    Application::current().setDelegate(nullptr);
    EXPECT_EQ(picker->keyRange().location, 0U);
    EXPECT_EQ(DfOctavePickerView({{}, {382, 26}}, false).rangeRect(), (Rect{{56, 0}, {49, 26}}));
}

TEST_F(OctavePicker, ADragEndsWhenDisabledAndWithItsWindowInTheMiddleOfAnAction) {
    drive("p70");
    EXPECT_EQ(port.toolTip, "F\u22121 \u2013 A0");
    picker->setEnabled(false);
    EXPECT_EQ(drive("d200 r p300 r > i"), "");
    EXPECT_FALSE(picker->setAccessibilityNumber(3.0));
    picker->setEnabled(true);
    host.hides = true;
    EXPECT_EQ(drive("p40 d200"), "0+10 ");
    EXPECT_EQ(port.toolTip, "");
}

TEST_F(OctavePicker, SpeaksInNamesOfNotes) {
    EXPECT_EQ(picker->accessibilityValueText(), "F\u22121 to A0");
    picker->setFirstNote(21);
    picker->setOctaveOfMiddleC(4);
    EXPECT_EQ(picker->accessibilityValueText(), "D2 to F3");
    picker->setKeyRange({60, 15});
    EXPECT_EQ(picker->accessibilityValueText(), "E9 to G9") << "there are no notes beyond";
    picker->setFirstNote(-1);
    EXPECT_EQ(picker->firstNote(), 0);
    picker->setKeyRange({10, 10});
    port.notifications.clear();
    EXPECT_TRUE(picker->setAccessibilityNumber(1e9));
    EXPECT_FALSE(picker->setAccessibilityNumber(std::nan("")));
    EXPECT_EQ(host.told, "65+10 ");
    EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].size(), 1U);
}

TEST_F(OctavePicker, DrawsTheImagesOfTheHost) {
    const auto keys = std::make_shared<testing::RecordedImage>(904, 60, 2.0F);
    const auto part = std::make_shared<testing::RecordedImage>(4, 26, 1.0F);
    const char* const names[] = {"octave-glyphKeys", "octave-L_edge", "octave-fill",
                                 "octave-R_edge"};
    for (const char* const name : names)
        registerImage(name, [&, name](float) { return name == names[0] ? keys : part; });
    picker->appearanceDidChange();
    picker->setKeyRange({65, 10});
    std::vector<Rect> places;
    picker->setNeedsDisplay();
    for (const auto& call : host.window->drawn(RecordingCanvas::What::Image))
        places.push_back(call.rect);
    EXPECT_THAT(places, ::testing::ElementsAre(Rect{{6, 5}, {452, 30}}, Rect{{397, 0}, {4, 40}},
                                               Rect{{401, 0}, {52, 40}}, Rect{{453, 0}, {4, 40}}));
    for (const char* const name : names)
        registerImage(name, nullptr);
}

}  // namespace
}  // namespace veltra
