// SPDX-License-Identifier: MIT
#include "veltra/ui/action_cell.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

struct Noting final : Anchored {
    void act(Anchored* sender) { senders.push_back(sender); }
    std::vector<Anchored*> senders;
};

TEST(ActionCells, SendForTheViewAroundOrForThemselvesAndNothingToATargetThatHasDied) {
    const ScriptedPort port;
    Noting delegate;
    Application::current().setDelegate(&delegate);
    Control control({{}, {20, 20}}, std::make_unique<ActionCell>());
    ActionCell alone, inView;
    View view;
    inView.calculateInternalsFromCellFrame({}, view);
    const std::pair<ActionCell*, Anchored*> rows[] = {
        {static_cast<ActionCell*>(control.cell()), &control}, {&inView, &view}, {&alone, &alone}};
    for (const auto& [cell, sender] : rows) {
        Noting target;
        cell->setTarget(&target);
        cell->sendAction();  // has none yet
        cell->setAction(action<&Noting::act>());
        cell->sendAction();
        EXPECT_EQ(target.senders, std::vector{sender});
    }
    for (const auto& [cell, sender] : rows)
        cell->sendAction();
    EXPECT_FALSE(control.sendAction()) << "not to somebody else instead";
    EXPECT_TRUE(delegate.senders.empty());
    control.setTarget(nullptr);
    EXPECT_TRUE(control.sendAction());
    EXPECT_EQ(delegate.senders.size(), 1U);
}

}  // namespace
}  // namespace veltra::testing
