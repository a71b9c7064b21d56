#include "veltra/platform/action.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

struct Button : Anchored {};
struct Slider : Anchored {};

struct Clickable {
    virtual ~Clickable() = default;
    virtual void clicked() = 0;
};

struct Host : Anchored, Clickable {
    void plain() { ++plainCalls; }
    int constant() const noexcept { return ++plainCalls; }
    void byReference(Button& sender) { senders.push_back(&sender); }
    void byPointer(const Button* sender) { senders.push_back(sender); }
    void clicked() override { ++plainCalls; }

    mutable int plainCalls = 0;
    std::vector<const Anchored*> senders;
};

TEST(Action, CallsTheMemberFunctionOnlyWhenTargetAndSenderFit) {
    Host host;
    Button button;
    Slider slider;

    EXPECT_TRUE(action<&Host::plain>().send(&host, nullptr));
    EXPECT_TRUE(action<&Host::constant>().send(&host, &slider));
    EXPECT_TRUE(action<&Clickable::clicked>().send(&host, nullptr));
    EXPECT_EQ(host.plainCalls, 3);

    EXPECT_TRUE(action<&Host::byReference>().send(&host, &button));
    EXPECT_FALSE(action<&Host::byReference>().send(&host, &slider));
    EXPECT_FALSE(action<&Host::byReference>().send(&host, nullptr));
    EXPECT_TRUE(action<&Host::byPointer>().send(&host, &button));
    EXPECT_TRUE(action<&Host::byPointer>().send(&host, &slider));
    EXPECT_EQ(host.senders, (std::vector<const Anchored*>{&button, &button, nullptr}));

    EXPECT_FALSE(action<&Host::plain>().send(&button, nullptr));
    EXPECT_FALSE(action<&Host::plain>().send(nullptr, nullptr));
    EXPECT_FALSE(Action().send(&host, nullptr));
    EXPECT_TRUE(action<&Host::byReference>().respondsTo(&host));
    EXPECT_FALSE(action<&Host::byReference>().respondsTo(&button));
    EXPECT_FALSE(Action(nullptr).respondsTo(&host));
    EXPECT_EQ(host.plainCalls, 3);
}

TEST(Action, IsAValueThatKnowsItsMemberFunction) {
    static_assert(!Action() && action<&Host::plain>());
    static_assert(Action() == nullptr && action<&Host::plain>() != nullptr);
    Action stored = action<&Host::plain>();
    EXPECT_TRUE(stored == action<&Host::plain>());
    EXPECT_FALSE(stored == action<&Host::clicked>());
    stored = nullptr;
    EXPECT_TRUE(stored == Action());
}

TEST(WeakPointer, AnswersNullOnceTheObjectIsGoneHoweverThePointersCameAndWent) {
    auto host = std::make_unique<Host>();
    const WeakPointer<Host> first(host.get());
    auto second = std::make_unique<WeakPointer<Host>>(first);
    WeakPointer<Host> third;
    third = first;
    const WeakPointer<Anchored> base(host.get());
    second.reset();  // from the middle of the list
    third = *&third;
    const Host copy(*host);

    EXPECT_EQ(first.get(), host.get());
    EXPECT_EQ(third.get(), host.get());
    EXPECT_EQ(base.get(), host.get());
    host.reset();
    EXPECT_EQ(first.get(), nullptr);
    EXPECT_FALSE(third);
    EXPECT_FALSE(base);

    Host other;
    third = &other;
    EXPECT_EQ(third.get(), &other);
    third = nullptr;
    EXPECT_FALSE(third);
}

TEST(WeakPointer, AnObjectCanCountAsGoneBeforeItsDestructorCallsOut) {
    struct Leaving : Anchored {
        void leave() { cutAnchor(); }
    };
    Leaving leaving;
    const WeakPointer<Leaving> before(&leaving);
    leaving.leave();
    EXPECT_FALSE(before);
    EXPECT_FALSE(WeakPointer<Leaving>(&leaving));
}

}  // namespace
}  // namespace veltra
