// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/singleton.h"

#include "veltra/base/exception.h"
#include "veltra/infrastructure/testing/counted_classes.h"

#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace veltra {

namespace testing {

template class Single<0>;  // whole, with their entries
template class Single<1>;
template class Single<2>;
template class Single<3>;

}  // namespace testing

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using A = testing::Single<0>;
using B = testing::Single<1>;
using C = testing::Single<2>;
using D = testing::Single<3>;

const std::atomic<int>& living = testing::LifeMark::s_living;

std::vector<std::string> registeredNames() {
    std::vector<std::string> names;
    for (const QKSingleton::Living& one : QKSingleton::livingSingletons())
        names.push_back(one.className);
    return names;
}

class Singletons : public ::testing::Test {
protected:
    void SetUp() override { QKSingleton::releaseAllSingletons(); }
    void TearDown() override {
        A::s_init = nullptr;
        A::s_dealloc = B::s_dealloc = nullptr;
        QKSingleton::releaseAllSingletons();
        EXPECT_EQ(living, 0);
        EXPECT_THAT(registeredNames(), IsEmpty());
    }
};

TEST_F(Singletons, AreOneOfAClassAndNotCounted) {
    EXPECT_EQ(A::s_class.madeBy(), 0u);
    A* const one = A::sharedInstance();
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(A::sharedInstance(), one);
    EXPECT_EQ(A::s_class.alloc(), nullptr);
    EXPECT_NE(A::s_class.madeBy(), 0u);
    EXPECT_NE(static_cast<void*>(B::sharedInstance()), one);

    EXPECT_EQ(one->retainCount(), 4294967295u);
    EXPECT_EQ(one->retain(), one);
    EXPECT_EQ(one->autorelease(), one);
    EXPECT_EQ(one->copyWithZone(nullptr), one);
    for (int i = 0; i < 3; ++i)
        one->release();
    EXPECT_TRUE(one->isAlive());
    EXPECT_THAT(registeredNames(), ElementsAre("SingleA", "SingleB"));

    A::s_class.releaseSharedInstance();
    EXPECT_EQ(A::s_class.singleton(), nullptr);
    EXPECT_EQ(A::s_class.madeBy(), 0u);
    EXPECT_EQ(living, 1);
    EXPECT_THAT(registeredNames(), ElementsAre("SingleB"));
    A::s_class.releaseSharedInstance();  // of nothing
    EXPECT_NE(A::sharedInstance(), nullptr);
    EXPECT_THAT(registeredNames(), ElementsAre("SingleA", "SingleB"));
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
    EXPECT_THAT(A::s_class.makerName(),
                StartsWith("veltra::(anonymous namespace)::asksFirst() (singleton_test.cpp:"));
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
    A* const unprepared = A::sharedInstance();
    EXPECT_NE(unprepared, nullptr);
    EXPECT_EQ(A::sharedInstance(), unprepared);
    EXPECT_THAT(registeredNames(), IsEmpty());
    A::s_class.releaseSharedInstance();

    A::s_init = [](A&) -> Object* { throw 7; };
    EXPECT_THROW(A::sharedInstance(), int);
    std::thread([] { EXPECT_NE(A::sharedInstance(), nullptr); }).join();  // the monitor is free
    A::s_class.releaseSharedInstance();
}

TEST_F(Singletons, WithoutASlotSaySo) {
    class Slotless final : public SingletonClass {
    public:
        using SingletonClass::SingletonClass;
    };
    static constinit Slotless slotless("Slotless", &QKSingleton::s_class, nullptr);
    const auto raised = [](auto&& call) {
        try {
            call();
        } catch (const Exception& exception) {
            return exception.name() + "|" + exception.reason();
        }
        return std::string("nothing");
    };
    EXPECT_EQ(raised([] { slotless.sharedInstance(); }), "ESSingleton|+singleton not implemented");
    EXPECT_EQ(raised([] { slotless.setSingleton(nullptr); }),
              "ESSingleton|+setSingleton: not implemented");
    EXPECT_EQ(raised([] { slotless.alloc(); }), "ESSingleton|+singleton not implemented");
}

// Eight threads make, use their own and release, and one tears all down again and again. Only its
// own class's instance is used by a thread, and it alone releases that.
TEST_F(Singletons, AreMadeOnceByManyThreads) {
    for (int round = 0; round < 200; ++round) {
        std::set<A*> seen;
        std::mutex lock;
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&] {
                A* const one = A::sharedInstance();
                EXPECT_TRUE(one->isAlive());
                const std::scoped_lock guard(lock);
                seen.insert(one);
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(seen.size(), 1u);
        A::s_class.releaseSharedInstance();
    }
    std::atomic<bool> isOver{false};
    std::thread teardown([&isOver] {
        while (!isOver)
            QKSingleton::releaseAllSingletons();
    });
    const auto makeAndRelease = [](auto& classObject) {
        for (int i = 0; i < 3000; ++i) {
            classObject.sharedInstance();
            classObject.releaseSharedInstance();
        }
    };
    std::thread b([&] { makeAndRelease(B::s_class); });
    std::thread c([&] { makeAndRelease(C::s_class); });
    makeAndRelease(D::s_class);
    b.join();
    c.join();
    isOver = true;
    teardown.join();
}

}  // namespace

}  // namespace veltra
