// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/singleton.h"

#include "veltra/base/exception.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/testing/counted_classes.h"

#include <gmock/gmock.h>

namespace veltra {

template struct testing::Single<0>;  // whole, with their entries
template struct testing::Single<1>;
template struct testing::Single<2>;
template struct testing::Single<3>;

namespace {

using A = testing::Single<0>;
using B = testing::Single<1>;
using C = testing::Single<2>;
using D = testing::Single<3>;

const std::atomic<int>& living = testing::LifeMark::s_living;

std::string registered() {
    std::string names;
    for (const QKSingleton::Living& one : QKSingleton::livingSingletons())
        names += one.className + ' ';
    return names;
}

struct Singletons : ::testing::Test {
    void SetUp() override { QKSingleton::releaseAllSingletons(); }
    void TearDown() override {
        A::s_init = nullptr;
        A::s_dealloc = B::s_dealloc = nullptr;
        QKSingleton::releaseAllSingletons();
        EXPECT_EQ(living, 0);
        EXPECT_EQ(registered(), "");
    }
};

TEST_F(Singletons, AreOneOfAClassAndNotCounted) {
    EXPECT_EQ(A::s_class.madeBy(), 0u);
    A* const one = A::sharedInstance();
    EXPECT_EQ(A::sharedInstance(), one);
    EXPECT_EQ(A::s_class.alloc(), nullptr);
    EXPECT_NE(A::s_class.madeBy(), 0u);
    EXPECT_NE(static_cast<void*>(B::sharedInstance()), one);

    EXPECT_EQ(one->retainCount(), 4294967295u);
    EXPECT_TRUE(one->retain() == one && one->autorelease() == one &&
                one->copyWithZone(nullptr) == one);
    one->release();
    EXPECT_TRUE(one->isAlive());
    EXPECT_EQ(registered(), "SingleA SingleB ");

    A::s_class.releaseSharedInstance();
    EXPECT_EQ(A::s_class.singleton(), nullptr);
    EXPECT_EQ(A::s_class.madeBy(), 0u);
    EXPECT_EQ(registered(), "SingleB ");
    A::s_class.releaseSharedInstance();  // of nothing
    EXPECT_NE(A::sharedInstance(), nullptr);
    EXPECT_EQ(living, 2);
}

[[gnu::noinline]] void asksFirst() {
    A::sharedInstance();
    asm volatile("" ::: "memory");
}

TEST_F(Singletons, TellWhoAskedFirst) {
    EXPECT_EQ(QKSingleton::livingReport(), "");
    EXPECT_EQ(A::s_class.makerName(), "");
    asksFirst();
    A::sharedInstance();
    EXPECT_EQ(QKSingleton::livingReport(),
              "SingleA: first asked for by " + A::s_class.makerName() + "\n");
#if defined(VELTRA_BACKTRACE)
    EXPECT_THAT(
        A::s_class.makerName(),
        ::testing::StartsWith("veltra::(anonymous namespace)::asksFirst() (singleton_test.cpp:"));
#endif
    A::s_class.releaseSharedInstance();
    EXPECT_EQ(A::s_class.makerName(), "");
}

TEST_F(Singletons, AreTornDownTogetherAlsoThoseMadeMeanwhile) {
    A::sharedInstance();
    A::s_dealloc = [] { B::sharedInstance(); };
    B::s_dealloc = [] { C::sharedInstance(); };
    QKSingleton::releaseAllSingletons();
    EXPECT_EQ(living, 0);
    EXPECT_EQ(Class::named("_QKSingletonCollector")->superclass(), &QKSingleton::s_class);
    QKSingleton::releaseAllSingletons();  // of nothing

    // Two that make each other anew do not keep it busy for ever.
    A::s_dealloc = [] { B::sharedInstance(); };
    B::s_dealloc = [] { A::sharedInstance(); };
    A::sharedInstance();
    QKSingleton::releaseAllSingletons();
    EXPECT_EQ(living, 1);
}

TEST_F(Singletons, ThatRefuseToBePreparedAreNotRegistered) {
    A::s_init = [](A& self) {
        EXPECT_EQ(A::sharedInstance(), &self);  // the half-made object
        return nullptr;
    };
    EXPECT_NE(A::sharedInstance(), nullptr);
    EXPECT_EQ(living, 1);
    EXPECT_EQ(registered(), "");
    A::s_class.releaseSharedInstance();

    A::s_init = [](A&) -> Object* { throw 7; };
    EXPECT_THROW(A::sharedInstance(), int);
    std::thread([] { EXPECT_NE(A::sharedInstance(), nullptr); }).join();  // the monitor is free
    A::s_class.releaseSharedInstance();
}

TEST_F(Singletons, WithoutASlotSaySo) {
    struct Slotless final : SingletonClass {
        using SingletonClass::SingletonClass;
    };
    static constinit Slotless slotless("Slotless", &QKSingleton::s_class, nullptr);
    const std::pair<void (*)(), const char*> calls[] = {
        {[] { slotless.sharedInstance(); }, "ESSingleton: +singleton not implemented"},
        {[] { slotless.setSingleton(nullptr); }, "ESSingleton: +setSingleton: not implemented"},
        {[] { slotless.alloc(); }, "ESSingleton: +singleton not implemented"}};
    for (const auto& [call, what] : calls)
        EXPECT_THAT(call, ::testing::ThrowsMessage<Exception>(what));
}

// Eight threads make, use their own and release, and one tears all down again and again. Only its
// own class's instance is used by a thread, and it alone releases that.
TEST_F(Singletons, AreMadeOnceByManyThreads) {
    for (int round = 0; round < 200; ++round) {
        std::array<A*, 8> seen;
        testing::onThreads(8, [&seen](std::size_t thread) {
            seen[thread] = A::sharedInstance();
            EXPECT_TRUE(seen[thread]->isAlive());
        });
        EXPECT_EQ(std::count(seen.begin(), seen.end(), A::sharedInstance()), 8);
        A::s_class.releaseSharedInstance();
    }
    std::atomic<int> running{3};
    SlotClass<>* const classes[] = {&B::s_class, &C::s_class, &D::s_class};
    testing::onThreads(4, [&](int thread) {
        if (thread == 3)
            while (running > 0)
                QKSingleton::releaseAllSingletons();
        for (int i = 0; i < 3000 && thread < 3; ++i) {
            classes[thread]->sharedInstance();
            classes[thread]->releaseSharedInstance();
        }
        --running;
    });
}

}  // namespace

}  // namespace veltra
