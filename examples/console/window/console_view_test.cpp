// SPDX-License-Identifier: MIT
// The window's views without a player: what they look like is measured, what they ask for is noted.
#include "console_view.h"

#include "../text.h"
#include "../times.h"
#include "settings.h"
#include "testing/pictured.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/sliders/fader_scale.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/platform/testing/manual_run_loop.h"

namespace veltra::console::testing {
namespace {

// Notes what the views ask for, in words.
struct Notes final : ConsoleDelegate {
    std::string last;
    void note(const char* what, int key, double value) {
        last = std::string(what) + ' ' + std::to_string(key) + ' ' + decimalText(value, 1);
    }
    void addFilesWasPressed() override { last = "add"; }
    void undoWasPressed() override { last = "undo"; }
    void removeStripWasPressed(StripKey key) override { note("remove", key, 0); }
    void stripWasMoved(StripKey key, int place) override { note("move", key, place); }
    void stripMenuWasPressed(StripKey key, View&) override { note("menu", key, 0); }
    void gainWasSet(StripKey key, double decibels) override { note("gain", key, decibels); }
    void panWasSet(StripKey key, double pan) override { note("pan", key, 100.0 * pan); }
    void muteWasSwitched(StripKey key, bool isOn) override { note("mute", key, isOn); }
    void soloWasSwitched(StripKey key, bool isOn) override { note("solo", key, isOn); }
    void playWasSwitched(bool isOn) override { note("play", 0, isOn); }
    void loopWasSwitched(bool isOn) override { note("loop", 0, isOn); }
    void placeWasChosen(double seconds) override { note("place", 0, seconds); }
    void loopWasChosen(double begin, double end) override {
        note("loop of", static_cast<int>(std::lround(begin)), end);
    }
    void tempoWasSet(double tempo) override { note("tempo", 0, tempo); }
    void meterWasSet(int beats, int unit) override { note("meter", beats, unit); }
    void outputGainWasSet(double decibels) override { note("output", 0, decibels); }
    void dimWasSwitched(bool isOn) override { note("dim", 0, isOn); }
};

std::string nameOf(int key) {
    return "A file with quite a long name " + std::to_string(key) + ".wav";
}

// Strips 1, 2, 3, … with one, two and six channels in turn, but the sixth with 300, each 10 seconds
// long.
ConsoleState stateOf(int count) {
    ConsoleState state;
    state.rate = 48000;
    for (int i = 0; i < count; ++i) {
        StripState& strip = state.strips.emplace_back();
        const int channels = i == 5 ? 300 : i % 3 == 2 ? 6 : i % 3 + 1;
        strip.key = i + 1;
        strip.path = "/music/" + nameOf(strip.key);
        strip.format.rate = 48000;
        strip.format.channels = channels;
        strip.meter.peaks.assign(static_cast<std::size_t>(channels), 0.1F);
        strip.format.plan = channelPlan(std::vector<int>(strip.meter.peaks.size()));
        strip.meter.framesTotal = 480'000;
    }
    return state;
}

class Desk : public Pictured {
public:
    Desk(Size size, int strips, float scale = 1.0F)
        : Pictured(size, scale),
          state(stateOf(strips)),
          m_view(show(std::make_unique<ConsoleView>(Rect{{}, size}, notes))) {
        update();
    }
    ~Desk() { window().setContentView(nullptr); }

    // A second goes by with each look, so that meters fall to where the signal is.
    void update() {
        m_clocks.now += seconds(1.0);
        view().update(state);
    }

    Notes notes;
    ConsoleState state;
    ConsoleView& view() { return m_view; }
    StripView& strip(int index) { return *view().row().strips()[static_cast<std::size_t>(index)]; }

    void wheel(Point point, float notches) {
        Event event;
        event.type = EventType::ScrollWheel;
        event.locationInWindow = point;
        event.deltaY = notches;
        post(event);
    }

    AccessibilityElement* find(const std::string& name) { return testing::find(view(), name); }
    Point middleOf(const std::string& name) {
        AccessibilityElement* const found = find(name);
        EXPECT_NE(found, nullptr) << name;
        return found != nullptr ? accessibilityFrameInWindow(*found).center() : Point{};
    }
    void focus(const std::string& name) {
        AccessibilityElement* const found = find(name);
        ASSERT_NE(found, nullptr) << name;
        window().giveKeyboardTo(*found->accessibilityView());
        key(kF1Character);  // keys lead from here on
    }

private:
    veltra::testing::ManualClocks m_clocks;
    ConsoleView& m_view;
};

Rect inWindow(const View& view) {
    return view.convertRectToView(view.bounds(), nullptr);
}

Rect levelsOf(const MeterGroup& meters) {
    return meters.convertRectToView(meters.firstCell().rectOfLevels(), nullptr);
}

// The reading line of a fader, as a height in the window.
float readingLine(const StripSlider& fader) {
    const Rect knob = fader.sliderCell().knobRectFlipped(fader.isFlipped());
    return fader.convertRectToView(knob, nullptr).center().y;
}

// Where everything stands, for comparison.
std::vector<Rect> framesIn(const View& view) {
    std::vector<Rect> frames;
    for (const auto& child : view.subviews()) {
        if (child->isHidden()) continue;
        frames.push_back(child->frame());
        const auto inside = framesIn(*child);
        frames.insert(frames.end(), inside.begin(), inside.end());
    }
    return frames;
}

// Inside of the card, and beside each other: the margins of sliders, in which their halos are,
// count as free.
void expectApart(const View& card) {
    const auto coreOf = [](const View& view) {
        const bool isSlider = dynamic_cast<const StripSlider*>(&view) != nullptr;
        return isSlider ? view.frame().inset(4.0F, 4.0F) : view.frame();
    };
    const Rect inside = card.bounds().inset(7.0F, 7.0F);
    for (const auto& view : card.subviews()) {
        if (view->isHidden()) continue;
        const Rect core = coreOf(*view);
        EXPECT_EQ(core.united(inside), inside) << "of " << card.accessibilityName();
        for (const auto& other : card.subviews()) {
            if (other == view || other->isHidden()) continue;
            const Rect both = coreOf(*other).intersection(core);
            EXPECT_TRUE(both.size.width < 0.1F || both.size.height < 0.1F)
                << view->accessibilityName() << " and " << other->accessibilityName();
        }
    }
}

TEST(ConsoleLayout, AgreesAcrossCardsAtEveryScaleAndSize) {
    const Size sizes[] = {{1180, 720}, {1180, 540},  {560, 480},
                          {460, 320},  {1920, 1080}, {1000, 480}};
    for (const float scale : {1.0F, 1.25F, 1.5F, 2.0F}) {
        for (const Size size : sizes) {
            Desk desk(size, 6, scale);
            SCOPED_TRACE(::testing::Message()
                         << scale << " at " << size.width << " x " << size.height);
            StripRow& row = desk.view().row();
            const OutputView& output = desk.view().output();
            const Rect levels = levelsOf(output.meters());
            EXPECT_NEAR(std::remainder(levels.maxY() * scale, 1.0F), 0.0F, 0.01F);
            const auto count = static_cast<int>(row.strips().size());
            EXPECT_EQ(desk.view().bridge().isHidden(), row.inSight() == count);
            for (int i = row.first(); i < row.first() + row.inSight(); ++i) {
                const StripView& strip = desk.strip(i);
                const Rect own = levelsOf(strip.meters());
                EXPECT_EQ(own.minY(), levels.minY()) << i;
                EXPECT_EQ(own.maxY(), levels.maxY()) << i;
                const QkLevelMeterCell& cell = strip.meters().firstCell();
                EXPECT_EQ(cell.scale().ticks().front().edge, 0.0F);
                EXPECT_NEAR(own.size.height * scale,
                            static_cast<float>(cell.LEDCount()) * 4.0F * scale, 0.01F);
                EXPECT_LE(strip.frame().maxX(), row.bounds().size.width + 0.01F) << i;
                EXPECT_LE(strip.meters().opaqueRect().maxX(), strip.meters().bounds().maxX());
                if (strip.fader().isHidden()) continue;
                const float expected =
                    own.minY() + own.size.height * static_cast<float>(FaderScale::kZeroTravel);
                EXPECT_NEAR(readingLine(strip.fader()) * scale, expected * scale, 0.51F);
                if (!output.fader().isHidden()) {
                    EXPECT_EQ(readingLine(strip.fader()), readingLine(output.fader()));
                }
                expectApart(strip);
            }
            expectApart(output);
            desk.state.strips[5].meter.peaks.back() = 2.0F;
            desk.update();
            EXPECT_TRUE(desk.strip(5).meters().hasClipped());
        }
    }
}

TEST(ConsoleLayout, HasRoomForEachBarBesideScaleAndFader) {
    for (const float height : {220.0F, 320.0F, 420.0F, 600.0F}) {
        FileFormat format;
        for (format.channels = 1; format.channels <= 30; ++format.channels) {
            const int bars = MeterGroup::bars(format.channels);
            float width = StripView::leastWidth(format, cardKind(height));
            for (; width <= StripView::mostWidth(format); width += kGrid) {
                const CardLayout card = CardLayout::make({width, height}, bars);
                const float pitch = card.bar + card.barGap;
                EXPECT_LE(static_cast<float>(bars) * pitch - card.barGap,
                          card.meter.size.width - 2.0F * CardLayout::kGlass);
                EXPECT_LE(card.fader.maxX(), card.scale.minX());
            }
        }
    }
}

TEST(ConsoleLayout, TakesASecondLineInAHighWindowBeforeTheBridge) {
    struct Row {
        Size size;
        int strips;
        int lines;
        bool hasBridge;
    };
    for (const Row& row : {Row{{1180, 1399}, 9, 1, true}, Row{{1180, 1400}, 3, 1, false},
                           Row{{1180, 1400}, 9, 2, false}, Row{{1180, 1403}, 32, 2, true}}) {
        SCOPED_TRACE(row.strips);
        Desk desk(row.size, row.strips);
        StripRow& strips = desk.view().row();
        EXPECT_EQ(!desk.view().bridge().isHidden(), row.hasBridge);
        for (const int first : {0, row.strips}) {
            strips.scrollTo(first);
            std::map<float, int> lines;  // strips, by where their line ends
            for (int i = strips.first(); i < strips.first() + strips.inSight(); ++i) {
                const StripView& strip = desk.strip(i);
                EXPECT_EQ(strip.frame().united(strips.bounds()), strips.bounds());
                EXPECT_EQ(strip.frame().size.height, desk.strip(0).frame().size.height);
                ++lines[strip.frame().maxY()];
                expectApart(strip);
            }
            EXPECT_EQ(static_cast<int>(lines.size()), row.lines);
            EXPECT_EQ(lines.rbegin()->first, strips.bounds().size.height);
            EXPECT_TRUE(first == 0 || strips.first() + strips.inSight() == row.strips);
        }
        if (row.lines == 1) continue;
        // The first strip, by its name, behind the first of the second line.
        strips.scrollTo(0);
        int below = 0;
        while (desk.strip(below).frame().minY() == 0.0F)
            ++below;
        const Rect from = inWindow(desk.strip(0));
        const Rect to = inWindow(desk.strip(below));
        desk.drag({from.minX() + 30.0F, from.maxY() - 20.0F},
                  {to.center().x + 9.0F, to.center().y});
        EXPECT_EQ(desk.notes.last, formatted("move 1 %d.0", below));
    }
}

TEST(ConsoleLayout, IsTheSameAfterFortyOthers) {
    Desk desk({1180, 720}, 9);
    const std::vector<Rect> before = framesIn(desk.view());
    for (int i = 0; i < 40; ++i) {
        desk.view().setFrame({{},
                              {460.0F + 37.0F * static_cast<float>(i % 23),
                               320.0F + 29.0F * static_cast<float>(i % 17)}});
        desk.draw();
    }
    desk.view().setFrame({{}, {1180, 720}});
    EXPECT_EQ(framesIn(desk.view()), before);
}

// Pixels whose channels differ as those of a signal colour do.
int colouredPixels(const Image& image) {
    const auto width = static_cast<std::int32_t>(image.size().width * image.scale());
    const auto height = static_cast<std::int32_t>(image.size().height * image.scale());
    int count = 0;
    for (std::int32_t i = 0; i < width * height; ++i) {
        const std::uint32_t pixel = image.pixelAt(i % width, i / width);
        const auto [low, high] =
            std::minmax({pixel >> 16U & 0xFFU, pixel >> 8U & 0xFFU, pixel & 0xFFU});
        count += high - low > 64U;
    }
    return count;
}

TEST(ConsoleLook, HasNoColourAtRest) {
    Desk desk({1180, 720}, 0);
    desk.state = stateOf(3);
    for (StripState& strip : desk.state.strips)
        strip.meter.peaks.clear();
    desk.update();
    EXPECT_EQ(colouredPixels(*desk.draw()), 0);
    desk.state.strips[0].gainDecibels = -6.0;
    desk.update();
    EXPECT_GT(colouredPixels(*desk.draw()), 50);
    // What holds the cap while it is dragged captures nothing that the console has set.
    desk.state.strips[0].gainDecibels = 0.2;
    desk.update();
    EXPECT_NEAR(desk.strip(0).fader().level(), 0.2, 1e-6);
}

TEST(ConsoleLook, MovesABarWhileNobodyKnowsHowFarTheReadingIs) {
    Desk desk({1180, 720}, 1);
    desk.state.reading.push_back({nameOf(1)});
    std::vector<std::int32_t> begins;
    for (int i = 0; i < 2; ++i) {
        desk.update();
        const auto image = desk.draw();
        const Rect field = accessibilityFrameInWindow(*desk.find("Reading " + nameOf(1)));
        const auto y = static_cast<std::int32_t>(720.0F - field.maxY() + 22.0F);
        std::vector<std::int32_t> lit;
        const auto end = static_cast<std::int32_t>(field.maxX());
        for (auto x = static_cast<std::int32_t>(field.minX()) + 6; x < end; ++x) {
            const std::uint32_t pixel = image->pixelAt(x, y);
            if ((pixel & 0xFFU) > (pixel >> 16U & 0xFFU) + 64U) lit.push_back(x);
        }
        EXPECT_NEAR(static_cast<float>(lit.size()), 0.3F * (field.size.width - 16.0F), 2.0F);
        begins.push_back(lit.empty() ? 0 : lit.front());
    }
    EXPECT_NE(begins[0], begins[1]);
    HistoryView().add(0.5F, Moment(seconds(-0.5)));  // before all time
}

TEST(ConsoleInput, AsksTheDelegate) {
    Desk desk({1180, 720}, 3);
    const std::string one = nameOf(1);
    const std::pair<std::string, const char*> clicks[] = {{"Mute " + one, "mute 1 1.0"},
                                                          {"Solo " + nameOf(2), "solo 2 1.0"},
                                                          {"Menu of " + nameOf(3), "menu 3 0.0"},
                                                          {"Waveform of " + one, "place 0 5.0"},
                                                          {"Return to start", "place 0 0.0"},
                                                          {"Play", "play 0 1.0"},
                                                          {"Loop", "loop 0 1.0"},
                                                          {"Dim", "dim 0 1.0"},
                                                          {"Add files", "add"}};
    for (const auto& [name, expected] : clicks) {
        desk.click(desk.middleOf(name));
        EXPECT_EQ(desk.notes.last, expected) << name;
    }
    const Rect first = inWindow(desk.strip(0));
    const float toThird = inWindow(desk.strip(2)).center().x - first.center().x;
    const struct {
        Point from, way;
        ModifierFlags flags;
        const char* expected;
    } drags[] = {
        {desk.middleOf("Waveform of " + one), {500.0F, 0.0F}, kShiftKeyMask, "loop of 5 10.0"},
        {{first.center().x, first.maxY() - 20.0F}, {toThird + 30.0F, 0.0F}, {}, "move 1 2.0"},
        {desk.middleOf("gain of " + one), {0.0F, 12.0F}, {}, "gain 1 1.2"}};
    for (const auto& [from, way, flags, expected] : drags) {
        desk.drag(from, {from.x + way.x, from.y + way.y}, flags);
        EXPECT_EQ(desk.notes.last, expected);
    }
}

TEST(ConsoleInput, HasAKeyForEverything) {
    struct Row {
        std::string focus;
        char16_t key;
        ModifierFlags flags;
        std::string expected;
    };
    const std::string one = nameOf(1);
    const Row rows[] = {
        {"Solo " + one, u'm', {}, "mute 1 1.0"},
        {"Mute " + one, u's', {}, "solo 1 1.0"},
        {"Mute " + one, kReturnCharacter, {}, "mute 1 1.0"},
        {"Mute " + one, kForwardDeleteCharacter, {}, "remove 1 0.0"},
        {"fader of " + one, kUpArrowCharacter, {}, "gain 1 0.5"},
        {"fader of " + one, kDownArrowCharacter, kShiftKeyMask, "gain 1 -0.1"},
        {"pan of " + one, kRightArrowCharacter, kAlternateKeyMask, "pan 1 1.0"},
        {"gain of " + one, kDownArrowCharacter, {}, "gain 1 -0.5"},
        {"Waveform of " + one, kRightArrowCharacter, kAlternateKeyMask, "place 0 1.0"},
        {"output fader", kUpArrowCharacter, {}, "output 0 0.5"},
    };
    for (const Row& row : rows) {
        Desk desk({1180, 720}, 3);
        desk.focus(row.focus);
        desk.key(row.key, row.flags);
        EXPECT_EQ(desk.notes.last, row.expected) << row.focus;
    }
    Desk desk({1180, 720}, 3);
    desk.focus("Solo " + one);
    desk.key(u'm', {}, 0, EventType::KeyDown, true);
    for (const char* const name : {"Waveform of ", "gain of "})
        EXPECT_FALSE(desk.find(name + one)->setAccessibilityNumber(NAN));
    EXPECT_EQ(desk.notes.last, "");
}

TEST(ConsoleInput, TakesATypedGain) {
    const std::pair<std::u16string, std::string> rows[] = {{u"-3.5\r", "gain 1 -3.5"},
                                                           {u"-3,5\r", "gain 1 -3.5"},
                                                           {u"99\r", "gain 1 10.0"},
                                                           {u"-5\x1B", ""},
                                                           {u"-\r", ""},
                                                           {u"12\x7F\r", "gain 1 1.0"}};
    for (const auto& [typed, expected] : rows) {
        Desk desk({1180, 720}, 3);
        desk.click(desk.middleOf("gain of " + nameOf(1)), 2);
        for (const char16_t character : typed)
            desk.key(character);
        EXPECT_EQ(desk.notes.last, expected);
    }
}

TEST(ConsoleInput, LeadsFromStripToStripAndPartToPart) {
    Desk desk({560, 480}, 12);
    ConsoleView& view = desk.view();
    StripRow& row = view.row();
    const int inSight = row.inSight();
    EXPECT_EQ(inSight, 3);
    desk.focus("Solo " + nameOf(1));
    for (int i = 0; i < inSight; ++i)
        desk.key(kRightArrowCharacter);
    EXPECT_EQ(row.focused(), &desk.strip(inSight));
    EXPECT_EQ(row.first(), 1);  // it was brought into sight
    desk.key(u's');
    EXPECT_EQ(desk.notes.last, "solo 4 1.0");

    // The right neighbour takes over what is removed; the last one has only a left one.
    desk.state.strips.erase(desk.state.strips.begin() + inSight);
    desk.update();
    desk.key(u's');
    EXPECT_EQ(desk.notes.last, "solo 5 1.0");

    desk.wheel(inWindow(row).center(), -100.0F);
    EXPECT_EQ(row.first(), 8);
    const Rect bridge = inWindow(view.bridge());
    desk.click({bridge.minX() + 10.0F, bridge.center().y});
    EXPECT_EQ(row.first(), 0);
    AccessibilityElement& sight = *desk.find("Strips in sight");
    EXPECT_EQ(sight.accessibilityValueText(), "1 to 3 of 11");
    EXPECT_FALSE(sight.setAccessibilityNumber(NAN));
    for (const auto& [place, first] : {std::pair(1e300, 8), {4.0, 3}, {-1e300, 0}}) {
        EXPECT_TRUE(sight.setAccessibilityNumber(place));
        EXPECT_EQ(row.first(), first);
    }

    // A key moves the strips for a while, the wheel at once and with the keyboard.
    row.setScrollTime(1.5);
    desk.focus("Solo " + nameOf(inSight));
    const float rest = desk.strip(0).frame().minX();
    desk.key(kRightArrowCharacter);
    EXPECT_EQ(row.first(), 1);
    EXPECT_EQ(desk.strip(0).frame().minX(), rest);
    desk.wheel(inWindow(row).center(), -1.0F);
    EXPECT_EQ(desk.strip(row.first()).frame().minX(), 0.0F);
    desk.wheel(inWindow(row).center(), -4.0F);
    EXPECT_EQ(row.focused(), &desk.strip(row.first()));
    row.setScrollTime(0.0);

    view.addMessage("something");
    const auto isIn = [&](const char* name) {
        AccessibilityElement* const part = desk.find(name);
        auto* focused = dynamic_cast<View*>(desk.window().firstResponder());
        while (focused != nullptr && focused != part)
            focused = focused->superview();
        return part != nullptr && focused == part;
    };
    desk.focus("Play");
    for (const char* const part : {"Strips", "Output", "Messages", "Transport"}) {
        view.focusNextPart();
        EXPECT_TRUE(isIn(part)) << part;
    }
}

TEST(ConsoleClips, AgreeAndGoOutTogether) {
    Desk desk({1180, 720}, 3);
    ConsoleView& view = desk.view();
    const auto clip = [&] {
        for (const float peak : {std::nextafter(1.0F, 2.0F), 0.1F}) {
            desk.state.strips[0].meter.peaks = {peak};
            desk.state.strips[0].meter.peak = peak;
            desk.state.outputPeaks = {peak > 1.0F ? 1.2F : 0.0F, 0.5F};
            desk.update();
        }
    };
    const std::string peak = "peak of " + nameOf(1);
    clip();
    EXPECT_NE(desk.find("Clips: 2"), nullptr);
    EXPECT_TRUE(desk.strip(0).meters().hasClipped());
    EXPECT_EQ(desk.find(peak)->accessibilityValueText(), "0.0 dB, clipped");
    Event space;
    space.charactersIgnoringModifiers = u' ';
    for (const std::string& name : {peak, std::string("left output peak")})
        EXPECT_FALSE(desk.find(name)->accessibilityView()->wantsKey(space)) << "it plays";
    desk.click(desk.middleOf(nameOf(1) + " meters"));
    EXPECT_FALSE(desk.strip(0).hasClipped());
    EXPECT_EQ(desk.find(peak)->accessibilityValueText(), "silence");
    desk.update();
    EXPECT_NE(desk.find("Clips: 1"), nullptr);
    clip();
    desk.click(desk.middleOf("Clips: 2"));
    desk.update();
    EXPECT_FALSE(desk.strip(0).hasClipped() || view.output().hasClipped());
}

TEST(ConsoleMeters, ShowAndTellWhatIsAskedFor) {
    Desk desk({1180, 720}, 1);
    const std::string name = nameOf(1);
    desk.state.strips[0].meter.peak = 0.1F;
    desk.state.strips[0].squares = {0.25F};
    desk.update();
    EXPECT_EQ(desk.strip(0).meters().firstCell().rms(), std::nullopt);
    desk.view().setMeterKind(MeterKind::Rms);
    for (int i = 0; i < 200; ++i)
        desk.update();
    EXPECT_NEAR(*desk.strip(0).meters().firstCell().rms(), meterPositionForAmplitude(0.5F), 0.01F);
    EXPECT_NE(desk.find(name + " RMS meters"), nullptr);
    EXPECT_EQ(desk.find("peak of " + name)->accessibilityValueText(), "\u221220.0 dB");
    desk.view().setMeterKind(MeterKind::TruePeak);
    EXPECT_EQ(desk.find("peak of " + name)->accessibilityValueText(), "silence");  // a new peak
    desk.update();
    EXPECT_EQ(desk.find("peak of " + name)->accessibilityValueText(), "\u221220.0 dBTP");
    EXPECT_EQ(desk.strip(0).meters().firstCell().rms(), std::nullopt);
    EXPECT_NE(desk.find("Output true peak meters"), nullptr);
    desk.state.strips.push_back(stateOf(2).strips[1]);
    desk.update();
    EXPECT_NE(desk.find(nameOf(2) + " true peak meters"), nullptr);
}

TEST(ConsoleTransport, CountsInTheMeterThatIsSet) {
    Desk desk({1180, 720}, 1);
    const auto up = AccessibilityAction::Increment, down = AccessibilityAction::Decrement;
    const struct {
        const char* group;
        AccessibilityAction action;
        int beats, unit;  // before
        const char* expected;
    } kRows[] = {
        {"beats a bar", up, 4, 4, "meter 5 4.0"},   {"beats a bar", down, 1, 4, "meter 1 4.0"},
        {"beats a bar", up, 64, 4, "meter 64 4.0"}, {"beat unit", up, 4, 4, "meter 4 8.0"},
        {"beat unit", down, 4, 8, "meter 4 4.0"},   {"beat unit", down, 4, 1, "meter 4 1.0"},
        {"beat unit", up, 4, 64, "meter 4 64.0"}};
    for (const auto& row : kRows) {
        desk.state.beatsPerBar = row.beats;
        desk.state.beatUnit = row.unit;
        desk.update();
        desk.notes.last.clear();
        desk.find(row.group)->performAccessibilityAction(row.action);
        EXPECT_EQ(desk.notes.last, row.expected);
    }
    EXPECT_NE(desk.find("meter"), nullptr);
    desk.state.beatsPerBar = 12;
    desk.state.place = {3, 11, 480 * CMusicalContext::kTicksPerBeat / 960};
    desk.update();
    EXPECT_EQ(desk.find("position")->accessibilityValueText(), "0003.11.0480");
    desk.view().setFrame({{}, {820, 720}});
    EXPECT_EQ(desk.find("meter"), nullptr);  // its place is the menu
}

TEST(ConsoleMessages, StayUntilClosedAndOfferUndo) {
    Desk desk({1180, 720}, 1);
    const float before = inWindow(desk.strip(0)).minY();
    desk.view().addMessage("first");
    desk.view().addMessage("second");
    EXPECT_GT(inWindow(desk.strip(0)).minY(), before + 40.0F);
    EXPECT_NE(desk.find("second"), nullptr);
    EXPECT_NE(desk.find("Show all (2)"), nullptr);
    desk.view().offerUndo("amen");
    EXPECT_NE(desk.find("Removed amen"), nullptr);
    desk.click(desk.middleOf("Undo"));
    EXPECT_EQ(desk.notes.last, "undo");
    EXPECT_TRUE(desk.view().closeMessage());
    EXPECT_NE(desk.find("second"), nullptr);
    EXPECT_TRUE(desk.view().closeMessage());
    EXPECT_FALSE(desk.view().closeMessage());
    EXPECT_EQ(inWindow(desk.strip(0)).minY(), before);
}

TEST(ConsoleTimes, AreWrittenAsMusiciansReadThem) {
    EXPECT_EQ(clockTime(67.9), "1:07");
    EXPECT_EQ(clockTime(3723.0), "1:02:03");
    EXPECT_EQ(preciseTime(7.19), "0:07.1");
    EXPECT_EQ(axisStep(2.0, 140.0F, 34.0F), 0.5);
    EXPECT_EQ(axisStep(94.0, 140.0F, 34.0F), 30.0);
    EXPECT_EQ(axisText(90.0, 30.0), "1:30");
    EXPECT_EQ(axisText(0.75, 0.25), "0.75");
}

TEST(ConsoleSettings, KeepTheNewestFilesAndTheSize) {
    const veltra::testing::FakePreferences preferences;
    EXPECT_EQ(Settings::windowSize(), std::nullopt);
    Settings::setWindowSize({900.0F, 600.0F});
    EXPECT_EQ(Settings::windowSize(), (Size{900.0F, 600.0F}));
    Settings::setWindowSize({1e30F, 600.0F});  // no screen has it
    EXPECT_EQ(Settings::windowSize(), std::nullopt);
    Preferences::current().setValue("ConsoleKeyboard", PropertyValue::Dictionary{{"open", true}});
    EXPECT_EQ(Settings::keyboard().velocity, 100);
    EXPECT_EQ(Settings::keyboard().firstKey, 28U);
    for (const MeterKind kind : {MeterKind::TruePeak, MeterKind::Rms, MeterKind::Peak}) {
        Settings::setMeterKind(kind);
        EXPECT_EQ(Settings::meterKind(), kind);
    }
    for (int i = 0; i < 10; ++i)
        Settings::addRecentFile("/file " + std::to_string(i));
    Settings::addRecentFile("/file 7");
    const std::vector<std::string> files = Settings::recentFiles();
    ASSERT_EQ(files.size(), Settings::kMostRecent);
    EXPECT_EQ(files[0], "/file 7");
    EXPECT_EQ(files[1], "/file 9");
    EXPECT_EQ(std::count(files.begin(), files.end(), "/file 7"), 1);
    EXPECT_EQ(preferences.synchronised, 0);  // nobody waits for a disk while the window is used
    Settings::write();
    EXPECT_EQ(preferences.synchronised, 1);
}

}  // namespace
}  // namespace veltra::console::testing
