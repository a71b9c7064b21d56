// SPDX-License-Identifier: MIT
#include "veltra/ui/control.h"

#include "veltra/ui/action_cell.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

#include <gmock/gmock.h>

namespace veltra::testing {
namespace {

struct Willing final : ActionCell {
    bool startTracking(Point, View&) override { return true; }
    bool prefersTrackingUntilMouseUp() const override { return true; }
};

struct Host final : Anchored {
    void changed() { ++count; }
    int count = 0;
};

TEST(ControlActions, OneClickSendsOneActionWhereverTargetAndActionWereSet) {
    const ScriptedPort port;
    for (const bool isSetOnCell : {false, true}) {
        for (const bool isCellLate : {false, true}) {
            auto made = std::make_unique<Control>(Rect{{}, {20, 20}});
            Control& control = *made;
            Host target;
            if (!isCellLate) control.setCell(std::make_unique<Willing>());
            if (!isSetOnCell || isCellLate) {
                control.setTarget(&target);
                control.setAction(action<&Host::changed>());
            } else {
                static_cast<Willing*>(control.cell())->setTarget(&target);
                static_cast<Willing*>(control.cell())->setAction(action<&Host::changed>());
            }
            if (isCellLate) control.setCell(std::make_unique<Willing>());
            HostedView host(std::move(made));
            host.click({5, 5});
            EXPECT_EQ(target.count, 1);
            EXPECT_EQ(control.target(), &target);
            EXPECT_EQ(static_cast<Willing*>(control.cell())->action(), control.action());
            control.cell()->sendAction();
            control.sendAction();
            EXPECT_EQ(target.count, 3);
        }
    }
}

TEST(ControlActions, NothingIsSentToATargetThatHasDied) {
    const ScriptedPort port;
    Host delegate;
    Application::current().setDelegate(&delegate);
    Control control({{}, {20, 20}});
    control.setAction(action<&Host::changed>());
    {
        Host target;
        control.setTarget(&target);
        EXPECT_TRUE(control.sendAction());
    }
    EXPECT_FALSE(control.sendAction()) << "not to somebody else instead";
    EXPECT_EQ(delegate.count, 0);
    control.setTarget(nullptr);
    EXPECT_TRUE(control.sendAction());
    EXPECT_EQ(delegate.count, 1);
}

TEST(ControlArchive, HoldsTheControlAndItsCellApart) {
    const ScriptedPort port;
    Control control({{}, {20, 20}}, std::make_unique<Willing>());
    control.setTag(3);
    control.setFont(Font::systemFont(9.5F, FontWeight::Bold));
    control.setAlignment(TextAlignment::Right);
    control.setControlSize(ControlSize::Mini);
    control.setEnabled(false);
    control.setIntValue(42);
    static_cast<Willing*>(control.cell())->setTag(4);
    KeyedCoder coder;
    control.encodeWithCoder(coder);
    Control read({{}, {20, 20}}, std::make_unique<Willing>());
    read.decodeWithCoder(KeyedCoder(coder.archive()));
    EXPECT_EQ(read.tag(), 3);
    EXPECT_EQ(read.font(), control.font());
    EXPECT_EQ(read.alignment(), TextAlignment::Right);
    EXPECT_EQ(read.controlSize(), ControlSize::Mini);
    EXPECT_FALSE(read.isEnabled() || read.cell()->isEnabled());
    EXPECT_EQ(read.intValue(), 42);
    EXPECT_EQ(read.cell()->font(), control.font());
    EXPECT_EQ(static_cast<Willing*>(read.cell())->tag(), 4);
}

}  // namespace
}  // namespace veltra::testing
