// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/stereo_level_meter_view.h"

#include "veltra/platform/localization.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using testing::HostedView;
using testing::RecordingCanvas;
using testing::Shown;

class LevelMeterTest : public ::testing::Test {
protected:
    testing::ManualRunLoop loop;
    testing::ScriptedPort port;
};

std::vector<RecordingCanvas::Call> images(HostedView& host) {
    return host.drawn(RecordingCanvas::What::Image);
}

TEST_F(LevelMeterTest, ACellNeedsNoViewAndItsTimersStandInForCallsThatStayAway) {
    QkLevelMeterCell cell;
    cell.setFallBackStep(0.1F);
    cell.setFallBackStepTime(0.05);
    cell.setMaxLevelHoldTime(1.0);
    cell.setLevel(1.0F);
    EXPECT_EQ(cell.cellSizeForBounds({{}, {500, 500}}).height, 173.0F);
    EXPECT_TRUE(cell.rectOfLevels().isEmpty() && cell.levelMeterOffImage() == nullptr);
    cell.setLevel(0.35F);
    loop.advance(0.04);
    cell.setLevel(0.35F);  // postpones the tick that was due at 0.05
    EXPECT_NEAR(cell.displayLevel(), 0.92F, 1e-6);
    loop.advance(0.049);
    EXPECT_NEAR(cell.displayLevel(), 0.92F, 1e-6);
    loop.advance(0.001);
    EXPECT_NEAR(cell.displayLevel(), 0.82F, 1e-6);
    loop.advance(0.5);
    EXPECT_EQ(cell.displayLevel(), 0.35F);
    loop.advance(0.409);  // 0.999 s since the maximum
    EXPECT_EQ(cell.maxDisplayLevel(), 1.0F);
    loop.advance(0.001);
    EXPECT_EQ(cell.maxDisplayLevel(), 0.0F);
    EXPECT_FALSE(loop.nextDeadline());

    cell.setLevel(1.2F);
    cell.setLevel(0.0F);
    cell.timerAction(nullptr);
    EXPECT_FLOAT_EQ(cell.displayLevel(), 1.0F);
    cell.setFallBackStepTime(1e-9);  // many steps a tick
    loop.advance(0.1);
    EXPECT_EQ(cell.displayLevel(), 0.0F);
}

TEST_F(LevelMeterTest, OnlyMetersThatChangeAreDrawnAndOnlyTheirRectangles) {
    auto all = std::make_unique<View>(Rect{{}, {3000, 200}});
    std::vector<DfStereoLevelMeterView*> views;
    views.reserve(100);
    for (int i = 0; i < 100; ++i) {
        views.push_back(&all->addSubview(std::make_unique<DfStereoLevelMeterView>(
            Rect{{static_cast<float>(i) * 30.0F, 10}, {26, 180}})));
    }
    HostedView host(std::move(all));
    for (auto* view : views) {
        view->setLevelL(0.5F, 0.5F);
        view->setNeedsDisplay();
    }
    const auto first = host.display();
    EXPECT_EQ(RecordingCanvas::only(RecordingCanvas::What::Image, first).size(), 200U * 3U)
        << "unlit, lit, maximum";
    EXPECT_EQ(RecordingCanvas::only(RecordingCanvas::What::FillPath, first).size(), 100U)
        << "the glass";
    for (std::size_t i = 0; i < 100; ++i)
        views[i]->setLevelL(0.5F, i % 10 == 0 ? 0.8F : 0.495F);
    ASSERT_EQ(host.port.invalid.size(), 10U);
    EXPECT_EQ(host.port.invalid[1], (Rect{{314, 14}, {8, 172}}));
    const auto calls = host.display();
    EXPECT_TRUE(RecordingCanvas::only(RecordingCanvas::What::FillPath, calls).empty());
    const auto drawn = RecordingCanvas::only(RecordingCanvas::What::Image, calls);
    EXPECT_EQ(drawn.size(), 10U * 3U);
    for (const auto& call : drawn)
        EXPECT_GE(std::fmod(call.rect.minX(), 300.0F), 14.0F);
    views[0]->setLevelL(0.5F, 0.8F, true);
    EXPECT_EQ(host.port.invalid.size(), 2U);
}

TEST_F(LevelMeterTest, ThePitchOfLedsIsTheSameAfterEveryLayout) {
    Shown<DfStereoLevelMeterView> host(Rect{{}, {26, 180}});
    host.view.setLEDPitch(4.0F);
    const Rect first = host.view.cellL().rectOfLevels();
    for (int i = 0; i < 40; ++i) {
        host.view.setFrameSize({26, i % 2 == 0 ? 180.7F + static_cast<float>(i) : 180.0F});
        EXPECT_EQ(host.view.cellL().rectOfLevels().size.height,
                  4.0F * static_cast<float>(host.view.cellL().LEDCount()));
    }
    EXPECT_EQ(host.view.cellL().rectOfLevels(), first);
    EXPECT_EQ(first.maxY(), 180.0F - 20.0F);
    EXPECT_EQ(host.view.cellL().LEDCount(), 39U);  // of 180 points, less 24
    host.view.setLEDCount(7);
    EXPECT_EQ(host.view.cellL().LEDCount(), 7U);
    registerLevelMeterLook(77, drawnLevelMeterLook({.lightLength = 0.0F}));
    host.view.setImageIDs(77, 77);
    host.view.setLEDPitch(4.0F);
    EXPECT_EQ(host.view.cellL().LEDCount(), 43U) << "no gap before a light that is none";
    registerLevelMeterLook(77, nullptr);
}

TEST_F(LevelMeterTest, ASecondValueOfNoneDimsTheLevelAndAHigherOneDoesNot) {
    Shown<DfStereoLevelMeterView> host(Rect{{}, {28, 184}});
    host.view.setFallBackStepTime(0.0);
    host.view.setLevelL(0.6F, 0.0F);
    for (const auto& [rms, isLit] : {std::pair{0.0F, false}, {NAN, false}, {0.9F, true}}) {
        host.view.setRmsL(rms, std::nullopt);
        host.view.setNeedsDisplay();
        const auto calls = images(host);
        ASSERT_EQ(calls.size(), 4U) << rms;
        EXPECT_EQ(calls[1].rect.size.height, 96.0F) << "24 of 40 LEDs";
        EXPECT_EQ(calls[1].fingerprint == 1.0, isLit) << "the alpha";
    }
    host.port.invalid.clear();
    host.view.setRmsL(0.9F, std::nullopt);
    EXPECT_TRUE(host.port.invalid.empty());
    host.view.setMuted(true);
    EXPECT_EQ(host.port.invalid.size(), 2U);
    EXPECT_EQ(host.view.cellL().accessibilityValueText(), "\u22124.4 dB, RMS \u22124.4 dB, muted");
}

TEST_F(LevelMeterTest, AMutedBarIsThinButLitHoweverThinItIs) {
    const std::pair<std::int32_t, float> kRows[] = {{1, 1}, {2, 2},  {3, 1},
                                                    {4, 2}, {11, 3}, {20, 8}};
    for (const auto& [thickness, lit] : kRows) {
        LevelMeterPictureRequest request{.length = 40, .thickness = thickness};
        request.isMuted = true;
        const auto picture = levelMeterLook(kLevelMeterImageBar)->bar(request);
        const auto& last =
            static_cast<const testing::RecordedImage&>(*picture.on).canvas.calls.back();
        EXPECT_EQ(last.rect, (Rect{{(static_cast<float>(thickness) - lit) / 2, 0}, {lit, 1}}));
    }
}

TEST_F(LevelMeterTest, SettingsReachBothChannels) {
    Shown<DfStereoLevelMeterView> host(Rect{{}, {60, 180}});
    DfStereoLevelMeterView& view = host.view;
    view.setImageIDs(kLevelMeterImageBar, kLevelMeterImageSlim);
    view.setFallBackStep(0.2F);
    view.setMaxLevelHoldTime(3.0);
    view.setLEDPitch(-1.0F);
    view.setOnStateLEDInset(-1.0F);
    view.setLevelScale(LevelMeterLevels::Decibels);
    view.setMuted(true);
    for (const QkLevelMeterCell* const cell : {&view.cellL(), &view.cellR()}) {
        EXPECT_EQ(cell->levelMeterImageID(), kLevelMeterImageBar);
        EXPECT_EQ(cell->peakLEDImageID(), kLevelMeterImageSlim);
        EXPECT_TRUE(cell->fallBackStep() == 0.2F && cell->maxLevelHoldTime() == 3.0);
        EXPECT_TRUE(cell->LEDPitch() == 0.0F && cell->onStateLEDInset() == 0.0F);
        EXPECT_TRUE(cell->levelScale() == LevelMeterLevels::Decibels && cell->isMuted());
    }
    view.setPadding(6);
    EXPECT_EQ(view.cellR().cellFrame().minX() - view.cellL().cellFrame().maxX(), 6.0F);
    view.setPadding(-1);
    EXPECT_EQ(view.padding(), 0);
    view.setOrientation(LevelMeterOrientation::Horizontal);
    EXPECT_EQ(view.cellR().cellFrame().maxY(), view.cellL().cellFrame().minY());
    EXPECT_EQ(view.cellL().accessibilityOrientation(), AccessibilityOrientation::Horizontal);
    EXPECT_EQ(view.accessibilityActions().size(), 1U);
}

TEST_F(LevelMeterTest, ASubclassBringsItsOwnCells) {
    struct Cell : QkLevelMeterCell {};
    DfStereoLevelMeterView view({{}, {26, 180}}, cellFactory<Cell>());
    EXPECT_NE(dynamic_cast<Cell*>(&view.cellR()), nullptr);
    DfStereoLevelMeterView plain({{}, {26, 180}}, CellFactory());
    EXPECT_EQ(plain.cellL().accessibilityParent(), &plain);
}

TEST_F(LevelMeterTest, ImageIdentifiersChooseAmongRegisteredLooks) {
    const auto off = std::make_shared<testing::RecordedImage>(10, 100, 1.0F);
    const auto on = std::make_shared<testing::RecordedImage>(10, 100, 1.0F);
    const auto light = std::make_shared<testing::RecordedImage>(10, 8, 1.0F);
    registerLevelMeterLook(77, levelMeterLookOfImages(off, on, light, light));
    Shown<DfStereoLevelMeterView> host(Rect{{}, {30, 200}});
    host.view.setImageIDs(77, 77);
    host.view.setLEDCount(10);
    host.view.setOnStateLEDInset(1.0F);
    host.view.setLevelL(0.3F, 0.0F);
    EXPECT_EQ(host.view.cellL().cellHeight(), 108.0F);
    const QkLevelMeterCell& cell = host.view.cellL();
    EXPECT_TRUE(cell.levelMeterOffImage() == off && cell.levelMeterOnImage() == on);
    EXPECT_TRUE(cell.peakLedOffImage() == light && cell.peakLedOnImage() == light);
    EXPECT_EQ(cell.cellSizeForBounds({{}, {500, 500}}), (Size{10, 108}));
    const auto calls = images(host);
    ASSERT_EQ(calls.size(), 6U);
    EXPECT_EQ(calls[2].image, on.get());
    EXPECT_EQ(calls[2].source, (Rect{{1, 71}, {8, 28}}));
    EXPECT_EQ(calls[2].rect, (Rect{{3, 171}, {8, 28}}));
    EXPECT_EQ(calls[3].source, (Rect{{1, 71}, {8, 8}}));
    host.view.setLEDCount(0xFFFFFFFF);  // more than there are pixels: a continuous bar
    host.view.setLevelL(0.6F, 0.0F);
    EXPECT_EQ(images(host)[2].source, (Rect{{1, 41}, {8, 58}}));

    host.view.setLEDPitch(25.0F);  // four of them
    EXPECT_EQ(cell.LEDCount(), 4U);
    // Lying, without a picture of what is not lit.
    registerLevelMeterLook(78, levelMeterLookOfImages(nullptr, off, nullptr, light));
    host.view.setImageIDs(78, 78);
    host.view.setOrientation(LevelMeterOrientation::Horizontal);
    EXPECT_EQ(cell.cellSizeForBounds({{}, {500, 500}}), (Size{10, 100}));
    EXPECT_TRUE(cell.opaqueRect().isEmpty() && host.view.opaqueRect().isEmpty());
    EXPECT_EQ(images(host)[0].image, off.get());
    registerLevelMeterLook(78, nullptr);

    registerLevelMeterLook(77, nullptr);
    EXPECT_EQ(levelMeterLook(77), levelMeterLook(kLevelMeterImageLED));
}

TEST_F(LevelMeterTest, AClickOrAPressPutsOutBothClipLightsAndSendsTheAction) {
    auto host = std::make_unique<Shown<DfStereoLevelMeterView>>(Rect{{}, {26, 183}});
    DfStereoLevelMeterView& view = host->view;
    testing::Receiver target;
    target.react = [&] { EXPECT_FALSE(view.cellL().peak() || view.cellR().peak()); };
    view.setTarget(&target);
    view.setAction(action<&testing::Receiver::act>());
    view.setToolTips("level", "clip");
    EXPECT_EQ(host->window.toolTipAt({5, 100})->text, "level");
    EXPECT_EQ(host->window.toolTipAt({20, 174})->text, "clip");

    view.setLevelL(1.5F, 1.5F);
    host->display();
    view.setEnabled(false);
    host->click({5, 5});
    EXPECT_FALSE(view.performAccessibilityAction(AccessibilityAction::Press));
    EXPECT_TRUE(view.accessibilityActions().empty());
    EXPECT_TRUE(view.cellL().peak());
    view.setEnabled(true);
    host->display();
    host->click({5, 5});
    EXPECT_EQ(target.count, 1);
    const auto onSurface = [&](const Rect& rect) {
        return Rect{{rect.minX(), view.bounds().size.height - rect.maxY()}, rect.size};
    };
    EXPECT_THAT(host->port.invalid,
                ::testing::ElementsAre(onSurface(view.cellL().cellFrame()),
                                       onSurface(view.cellR().cellFrame()), view.bounds()));
    target.react = [&] { host.reset(); };  // the action deletes the view
    view.setPeakR(true);
    EXPECT_TRUE(view.performAccessibilityAction(AccessibilityAction::Press));
}

TEST_F(LevelMeterTest, TellsAScreenReaderInWordsAndNotTooOften) {
    struct German final : LocalizedStrings {
        std::string stringForKey(std::string_view key) const override {
            return key == "left stereo" ? "links" : std::string(key);
        }
    } german;
    LocalizedStrings::install(&german);
    DfStereoLevelMeterView view({{}, {26, 180}});
    const auto children = view.accessibilityChildren();
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0]->accessibilityName(), "links");
    LocalizedStrings::install(nullptr);
    EXPECT_EQ(children[1]->accessibilityName(), "right stereo");

    QkLevelMeterCell& cell = view.cellL();
    EXPECT_EQ(cell.accessibilityValueText(), "silence");
    EXPECT_EQ(cell.accessibilityNumber()->value, -70.0);
    const auto& told = port.notifications[AccessibilityNotification::ValueChanged];
    for (int i = 0; i < 600; ++i) {
        view.setLevelL(i / 40 % 2 != 0 ? 0.9F : 0.0F, 0.0F);
        loop.advance(1.0 / 60.0);
    }
    EXPECT_GT(told.size(), 10U);
    EXPECT_LE(told.size(), 21U);
    cell.setFallBackStepTime(0.0);
    view.setLevelL(0.25F, 0.0F);
    EXPECT_EQ(cell.accessibilityValueText(), "\u221212.0 dB");
    EXPECT_NEAR(cell.accessibilityNumber()->value, -12.04, 0.01);
    cell.setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
    const std::size_t before = told.size();
    view.setLevelL(1.5F, 0.0F);
    EXPECT_EQ(told.size(), before + 1);
    view.setLevelL(0.5F, 0.0F);
    EXPECT_EQ(cell.accessibilityValueText(), "\u221220.0 dB, clipped");
}

}  // namespace
}  // namespace veltra
