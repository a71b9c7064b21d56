// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/flyweight.h"

#include "veltra/base/exception.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/flyweight_pool.h"
#include "veltra/infrastructure/testing/counted_classes.h"

namespace veltra {

namespace {

using A = testing::Value<0>;
using B = testing::Value<1>;

const std::atomic<int>& living = testing::LifeMark::s_living;

struct Flyweights : ::testing::Test {
    void SetUp() override { A::s_setUps = B::s_setUps = 0; }
    void TearDown() override {
        A::s_setUp = nullptr;
        QKSingleton::releaseAllSingletons();
        EXPECT_EQ(living, 0);
    }
};

TEST_F(Flyweights, AreSharedByClassAndHash) {
    A* const one = A::get(60);
    EXPECT_EQ(one->retainCount(), 2u);  // the pool's and ours
    EXPECT_EQ(QKFlyweight::pooled(A::s_class, 62), nullptr);
    Object* const candidate = A::s_class.alloc();  // loses against the pooled one
    EXPECT_EQ(static_cast<A*>(candidate)->initWithHash(60), one);
    EXPECT_EQ(one->retainCount(), 3u);
    EXPECT_EQ(living, 1);
    EXPECT_EQ(A::s_setUps, 1);
    A* const other = A::get(61);
    B* const stranger = B::get(60);
    EXPECT_EQ(living, 3);
    EXPECT_TRUE(one->isEqual(stranger));  // the hash alone decides
    EXPECT_FALSE(one->isEqual(other) || one->isEqual(nullptr));

    one->release();
    one->release();
    EXPECT_EQ(A::get(60), one);  // stays for the next

    QKFlyweight::releasePoolOfFlyweights(A::s_class);
    EXPECT_EQ(one->retainCount(), 1u);
    A* const anew = A::get(60);
    EXPECT_NE(anew, one);
    EXPECT_EQ(A::s_setUps, 3);
    _QKPoolOfFlyweights::sharedInstance()->removeFlyweight(*one);  // not the one that is pooled
    EXPECT_EQ(A::get(60), anew);
    for (QKFlyweight* object :
         std::initializer_list<QKFlyweight*>{one, other, stranger, anew, anew})
        object->release();
}

TEST_F(Flyweights, LeaveThePoolWithTheirLastUser) {
    A* one = A::get(1);
    EXPECT_FALSE(one->willAutoRemoveFromPool());
    one->setWillAutoRemoveFromPool(true);
    one->retain();
    one->release();
    EXPECT_EQ(living, 1);
    one->release();
    EXPECT_EQ(living, 0);

    one = A::get(1);
    EXPECT_EQ(A::s_setUps, 2);
    one->release();
    EXPECT_EQ(one->retainCount(), 1u);
    one->setWillAutoRemoveFromPool(false);
    EXPECT_EQ(living, 1);
    one->setWillAutoRemoveFromPool(true);  // only the pool has it
    EXPECT_EQ(living, 0);

    one = A::get(1);
    one->setWillAutoRemoveFromPool(true);
    one->setWillAutoRemoveFromPool(false);
    one->release();
    EXPECT_EQ(living, 1);
}

TEST_F(Flyweights, AreNotFoundHalfMade) {
    A::s_setUp = [](A& self) {
        if (self.hash() == 2) A::get(2)->release();  // its own thread may
        if (self.hash() == 3) throw 3;
    };
    A::get(2)->release();
    EXPECT_THROW(A::get(3), int);
    EXPECT_EQ(living, 1);
    A* const bare = static_cast<A*>(A::s_class.alloc());
    try {
        bare->init();
        ADD_FAILURE();
    } catch (const Exception& exception) {
        EXPECT_STREQ(exception.what(), "QKFlyweight: -init: not the designated initializer");
    }
    bare->release();

    for (const std::uint32_t hash : {4U, 5U}) {  // the latter comes to nothing
        std::atomic<bool> isSetUp{false}, hasBegun{false};
        A::s_setUps = 0;
        A::s_setUp = [&](A&) {
            if (hasBegun.exchange(true)) return;
            for (int i = 0; i < 100; ++i)
                std::this_thread::yield();
            isSetUp = true;
            if (hash == 5) throw 5;
        };
        const std::jthread maker([hash] {
            try {
                A::get(hash)->release();
            } catch (int) {
                EXPECT_EQ(hash, 5U);
            }
        });
        while (!hasBegun)
            std::this_thread::yield();
        A* const found = A::get(hash);
        EXPECT_TRUE(isSetUp);
        if (found != nullptr) found->release();
        EXPECT_EQ(found != nullptr, hash == 4 || A::s_setUps == 2);
    }
}

// Threads that ask, switch and release beside one that drops the pool: what anybody
// has is alive, and nothing is left at the end.
TEST_F(Flyweights, AreSafeAmongThreads) {
    std::atomic<int> running{7};
    testing::onThreads(8, [&running](std::uint32_t thread) {
        if (thread == 7)
            while (running > 0)
                QKFlyweight::releasePoolOfFlyweights(A::s_class);
        for (std::uint32_t i = 0; i < 3000 && thread < 7; ++i) {
            A* const one = A::get(i % 5);
            EXPECT_TRUE(one->isAlive());
            if ((i + thread) % 3 == 0) one->setWillAutoRemoveFromPool(i % 2 == 0);
            one->release();
        }
        --running;
    });
}

}  // namespace

}  // namespace veltra
