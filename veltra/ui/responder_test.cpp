// SPDX-License-Identifier: MIT
#include "veltra/ui/responder.h"

#include "veltra/base/testing/prelude.h"

namespace veltra::testing {
namespace {

struct Link final : Responder {
    Responder* next = nullptr;
    int ends = 0;
    std::vector<EventType> handled;
    Responder* nextResponder() const override { return next; }
    void noResponderFor(const Event&) override { ++ends; }
    void keyDown(const Event& event) override { handled.push_back(event.type); }
};

TEST(ResponderChain, LeadsEachEventUpToWhoHandlesItOrToItsEnd) {
    Link last;
    Responder first;
    struct Middle final : Responder {
        Responder* next;
        explicit Middle(Responder* above) : next(above) {}
        Responder* nextResponder() const override { return next; }
    } middle(&last);
    int passed = 0;
    for (int i = 0; i < 16; ++i) {  // nobody else hears of fingers, or of the pointer's going
        Event event;
        event.type = static_cast<EventType>(1 << i);
        (middle.*Responder::handlerFor(event.type))(event);
        const bool ends =
            i < 12 && event.type != EventType::KeyDown && event.type != EventType::MouseExited;
        passed += ends ? 1 : 0;
        EXPECT_EQ(last.ends, passed) << i;
        (first.*Responder::handlerFor(event.type))(event);  // a chain of one
    }
    EXPECT_EQ(last.handled.size(), 1U);
    EXPECT_FALSE(first.wantsKey(Event()));
}

}  // namespace
}  // namespace veltra::testing
