// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_run_loop.h"

#include "veltra/qt/testing/on_qt.h"

#include <QMenu>

namespace veltra::testing {
namespace {

TEST_F(OnQt, TimersGoOnInMenusAndInLoopsThatATimerRuns) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    int ticks = 0;
    probe.react = [&ticks](const Event& /*event*/) { ++ticks; };
    const auto beat = RunLoop::current()->schedule({.interval = milliseconds(1),
                                                    .target = &probe,
                                                    .action = action<&Probe::tick>(),
                                                    .repeats = true});
    QMenu menu;
    menu.addAction("item");
    Probe opener;
    opener.react = [&](const Event& /*event*/) {
        ticks = 0;
        menu.popup({0, 0});
        EXPECT_TRUE(comesTrue([&ticks] { return ticks >= 3; }));
        menu.close();
        opener.react = nullptr;
    };
    RunLoop::current()->schedule({.target = &opener, .action = action<&Probe::tick>()});
    EXPECT_TRUE(comesTrue([&opener] { return !opener.react; }));
    beat->invalidate();
}

}  // namespace
}  // namespace veltra::testing
