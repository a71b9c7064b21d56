// SPDX-License-Identifier: MIT
// A drag that no release will end: each control ends it itself, once and as with a release. What it
// has told and how it looks are compared with a drag that was released, or for a button, which acts
// at the release, with no press at all.
#include "on_pictures.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/controls/number_editor/number_display.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/platform/notification_center.h"
#include "veltra/qt/view_widget.h"
#include "veltra/ui/button.h"

#include <QFocusEvent>
#include <QImage>
#include <QPointingDevice>
#include <QTest>
#include <QTouchEvent>

namespace veltra::testing {
namespace {

struct Told final : Anchored, KeyboardViewDelegate {
    ~Told() override { NotificationCenter::local().removeObserver(this); }
    std::string text;
    void acted() { text += "action "; }
    void keyboardViewDidPressNote(KeyboardView&, std::int32_t note, std::int32_t) override {
        text += "+" + std::to_string(note) + " ";
    }
    void keyboardViewDidReleaseNote(KeyboardView&, std::int32_t note) override {
        text += "-" + std::to_string(note) + " ";
    }
    static void tracked(void* self, const VLString* name, const void*) {
        static_cast<Told*>(self)->text += name == kSliderStartTracking ? "start " : "stop ";
    }
};

template <typename C>
std::unique_ptr<C> telling(std::unique_ptr<C> control, Told& told) {
    control->setTarget(&told);
    control->setAction(action<&Told::acted>());
    return control;
}

std::unique_ptr<View> button(ButtonCell::Kind kind, Told& told) {
    return telling(std::make_unique<Button>(Rect{{}, {64, 24}}, "Stop", kind), told);
}

std::unique_ptr<View> slider(int width, int height, void (*setUp)(QkSliderCell&), Told& told) {
    auto made =
        std::make_unique<Slider>(Rect{{}, {static_cast<float>(width), static_cast<float>(height)}});
    if (setUp != nullptr) {
        QkSliderCell& cell = QkSliderCell::replacedCellInSlider(*made);
        setUp(cell);
        cell.setMovableToolTip(&cell, 0);
        auto& center = NotificationCenter::local();
        for (const VLString* name : {kSliderStartTracking, kSliderStopTracking})
            center.addObserver(&told, &Told::tracked, name, &cell);
    }
    return telling(std::move(made), told);
}

std::unique_ptr<View> numberEditor(bool isContinuous, Told& told) {
    auto made = std::make_unique<NumberDisplay>(Rect{{}, {164, 40}});
    made->editor().setSendsActionContinuous(isContinuous);
    made->editor().setTarget(&told);
    made->editor().setAction(action<&Told::acted>());
    return made;
}

std::unique_ptr<View> picker(bool allowsResizing, Told& told) {
    auto made = telling(
        std::make_unique<DfOctavePickerView>(Rect{{}, DfOctavePickerView::naturalSize(true)}),
        told);
    made->setKeyRange({28, 15});  // from 174 points on, 90 wide
    made->setAllowsResizing(allowsResizing);
    return made;
}

std::unique_ptr<View> keyboard(Told& told) {
    auto made = std::make_unique<KeyboardView>(Rect{{}, {400, 100}});
    made->setKeyRange({35, 8});
    made->setDelegate(&told);
    return made;
}

std::unique_ptr<View> meter(Told& told) {
    return telling(std::make_unique<DfStereoLevelMeterView>(Rect{{}, {28, 150}}), told);
}

void fader(QkSliderCell& cell) {
    setUpFader(cell);
}

template <auto maker, auto... arguments>
std::unique_ptr<View> made(Told& told) {
    return maker(arguments..., told);
}

enum class Kind : std::uint8_t { Drag, Click, Touch };

// Points are those of the control, from its upper left corner.
struct Specimen {
    const char* name;
    std::unique_ptr<View> (*make)(Told&);
    QPoint from, to;
    Kind kind = Kind::Drag;
};

constexpr Specimen kSpecimens[] = {
    {"button", made<button, ButtonCell::Kind::Momentary>, {9, 9}, {20, 12}, Kind::Click},
    {"toggle", made<button, ButtonCell::Kind::Toggle>, {9, 9}, {20, 12}, Kind::Click},
    {"slider", made<slider, 200, 20, nullptr>, {20, 10}, {90, 10}},
    {"fader", made<slider, 64, 150, fader>, {40, 40}, {40, 90}},
    {"pan", made<slider, 84, 28, setUpPan>, {42, 14}, {60, 14}},
    {"number", made<numberEditor, true>, {82, 20}, {82, 13}},
    {"number at rest", made<numberEditor, false>, {82, 20}, {82, 13}},
    {"range", made<picker, false>, {200, 20}, {240, 20}},
    {"beside the range", made<picker, false>, {60, 20}, {70, 20}},
    {"end of the range", made<picker, true>, {174, 20}, {150, 20}},
    {"keyboard", keyboard, {25, 90}, {80, 90}},
    {"finger", keyboard, {25, 90}, {80, 90}, Kind::Touch},
    {"meter", meter, {9, 60}, {9, 90}},
};

class Stage {
public:
    explicit Stage(const Specimen& shown) : m_specimen(shown) {
        widget.setFixedSize(520, 200);
        auto content = std::make_unique<Card>(Rect{{}, {520, 200}});
        frame = &content->addSubview(std::make_unique<Card>(Rect{{}, {520, 200}}));
        control = &frame->addSubview(shown.make(m_told));
        control->setFrameOrigin({20, 20});
        widget.setContentView(std::move(content));
        outside.resize(520, 200);
        outside.show();
    }
    void begin() {
        move({1, 1}, Qt::NoButton);
        move(m_specimen.from, Qt::NoButton);
        const QPoint from = at(m_specimen.from);
        if (isTouch()) touch().press(3, from);
        if (!isTouch()) QTest::mousePress(&widget, Qt::LeftButton, {}, from);
        go(m_specimen.to);
    }
    void release() {
        const QPoint to = at(m_specimen.to);
        if (isTouch()) touch().release(3, to);
        if (!isTouch()) QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
    }
    void goOn() { go(m_specimen.from); }
    void tell(QEvent&& event) { QApplication::sendEvent(&widget, &event); }
    void move(QPoint to, Qt::MouseButtons held) {
        tell(QMouseEvent(QEvent::MouseMove, at(to), widget.mapToGlobal(at(to)), Qt::NoButton, held,
                         Qt::NoModifier));
    }
    const std::string& told() const { return m_told.text; }
    // At rest, with the pointer elsewhere.
    QImage look() {
        move({-19, -19}, Qt::NoButton);
        widget.veltraWindow().makeFirstResponder(nullptr);
        return widget.grab().toImage();
    }

    QWidget outside;
    ViewWidget widget{&outside};
    View* frame = nullptr;
    View* control = nullptr;
    std::unique_ptr<View> kept;
    const std::unique_ptr<QPointingDevice> screen{QTest::createTouchDevice()};

private:
    static QPoint at(QPoint inControl) { return inControl + QPoint(20, 20); }
    bool isTouch() const { return m_specimen.kind == Kind::Touch; }
    QTest::QTouchEventWidgetSequence touch() { return QTest::touchEvent(&widget, screen.get()); }
    void go(QPoint to) {
        if (isTouch()) touch().move(3, at(to));
        if (!isTouch()) move(to, Qt::LeftButton);
    }

    const Specimen& m_specimen;
    Told m_told;
};

struct Loss {
    const char* name;
    void (*lose)(Stage&);
    void (*restore)(Stage&);
};

constexpr Loss kLosses[] = {
    {"the view is hidden", [](Stage& on) { on.control->setHidden(true); },
     [](Stage& on) { on.control->setHidden(false); }},
    {"what is around it is hidden", [](Stage& on) { on.frame->setHidden(true); },
     [](Stage& on) { on.frame->setHidden(false); }},
    {"the view is taken out", [](Stage& on) { on.kept = on.control->takeFromSuperview(); },
     [](Stage& on) { on.frame->addSubview(std::move(on.kept)); }},
    {"what is around it is taken out", [](Stage& on) { on.kept = on.frame->takeFromSuperview(); },
     [](Stage& on) { on.widget.contentView()->addSubview(std::move(on.kept)); }},
    {"the widget is hidden", [](Stage& on) { on.widget.hide(); },
     [](Stage& on) { on.widget.show(); }},
    {"the window is closed", [](Stage& on) { on.outside.close(); },
     [](Stage& on) { on.outside.show(); }},
    {"the widget is disabled", [](Stage& on) { on.widget.setEnabled(false); },
     [](Stage& on) { on.widget.setEnabled(true); }},
    {"another window is active", [](Stage& on) { on.tell(QEvent(QEvent::WindowDeactivate)); },
     [](Stage& on) { on.tell(QEvent(QEvent::WindowActivate)); }},
    {"a dialog opens", [](Stage& on) { on.tell(QEvent(QEvent::WindowBlocked)); },
     [](Stage& on) { on.tell(QEvent(QEvent::WindowUnblocked)); }},
    {"a menu opens",
     [](Stage& on) { on.tell(QFocusEvent(QEvent::FocusOut, Qt::PopupFocusReason)); },
     [](Stage& on) { on.tell(QFocusEvent(QEvent::FocusIn, Qt::PopupFocusReason)); }},
    {"the grab is lost", [](Stage& on) { on.tell(QEvent(QEvent::UngrabMouse)); }, [](Stage&) {}},
    {"the screen cancels its touches",
     [](Stage& on) { on.tell(QTouchEvent(QEvent::TouchCancel, on.screen.get())); }, [](Stage&) {}},
};

TEST(LostPointers, EndEachDragOnceAndAsAReleaseDoes) {
    for (const Specimen& specimen : kSpecimens) {
        Stage released(specimen);
        if (specimen.kind != Kind::Click) {
            released.begin();
            released.release();
            EXPECT_TRUE(!released.told().empty() || specimen.name == std::string("meter"));
        }
        const QImage look = released.look();
        for (const Loss& loss : kLosses) {
            SCOPED_TRACE(std::string(specimen.name) + ", " + loss.name);
            Stage stage(specimen);
            stage.begin();
            loss.lose(stage);
            EXPECT_EQ(stage.told(), released.told());
            EXPECT_FALSE(ToolTipWindow::shared().isOpen());
            stage.goOn();
            stage.release();
            loss.restore(stage);
            stage.goOn();
            EXPECT_EQ(stage.told(), released.told()) << "it is over";
            EXPECT_TRUE(stage.look() == look);
        }
    }
}

}  // namespace
}  // namespace veltra::testing
