// SPDX-License-Identifier: MIT
#include "veltra/base/action.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

struct Button : Anchored {};
struct Clickable {
    virtual ~Clickable() = default;
    virtual void clicked() = 0;
};
struct Host : Anchored, Clickable {
    int constant() const noexcept { return ++calls; }
    void clicked() override { ++calls; }
    void byReference(Button& sender) { senders.push_back(&sender); }
    void byPointer(const Button* sender) { senders.push_back(sender); }
    using Anchored::cutAnchor;

    mutable int calls = 0;
    std::vector<const Anchored*> senders;
};

TEST(Action, CallsTheMemberFunctionOnlyWhenTargetAndSenderFit) {
    Host host;
    Button button;
    const Action constant = action<&Host::constant>(), byReference = action<&Host::byReference>();
    EXPECT_TRUE(constant.send(&host, &host) && action<&Clickable::clicked>().send(&host, nullptr));
    EXPECT_TRUE(byReference.send(&host, &button));
    EXPECT_TRUE(action<&Host::byPointer>().send(&host, &button));
    EXPECT_TRUE(action<&Host::byPointer>().send(&host, &host));
    EXPECT_FALSE(byReference.send(&host, &host) || byReference.send(&host, nullptr));
    EXPECT_FALSE(constant.send(&button, nullptr) || constant.send(nullptr, nullptr));
    EXPECT_FALSE(Action().send(&host, nullptr) || Action().respondsTo(&host) || Action());
    EXPECT_TRUE(constant.respondsTo(&host) && constant == action<&Host::constant>());
    EXPECT_FALSE(constant.respondsTo(&button) || constant == byReference);
    EXPECT_EQ(host.calls, 2);
    EXPECT_EQ(host.senders, (std::vector<const Anchored*>{&button, &button, nullptr}));
}

TEST(WeakPointer, AnswersNullOnceTheObjectIsGoneHoweverThePointersCameAndWent) {
    auto host = std::make_unique<Host>();
    const WeakPointer<Host> first(host.get());
    auto second = std::make_unique<WeakPointer<Host>>(first);
    WeakPointer<Anchored> third;
    third = host.get();
    third = *&third;
    second.reset();  // from the middle of the list
    const Host copy(*host);
    EXPECT_TRUE(first.get() == host.get() && third.get() == host.get());
    host.reset();
    EXPECT_FALSE(first || third || third.get() != nullptr);

    Host leaving;
    third = &leaving;
    leaving.cutAnchor();
    EXPECT_FALSE(third || WeakPointer<Host>(&leaving));
}

}  // namespace
}  // namespace veltra
