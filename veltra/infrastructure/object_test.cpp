// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/object.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/monitor.h"
#include "veltra/infrastructure/testing/counted_classes.h"
#include "veltra/platform/run_loop.h"
#include "veltra/platform/testing/child_process.h"

namespace veltra {

namespace {

struct Plain : Object, testing::LifeMark {
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
    void dealloc() override {
        if (m_next != nullptr) m_next->autorelease();
        Object::dealloc();
    }
    Object* m_next = nullptr;  // handed to the pool by the end of this one
};

constinit PlainClass Plain::s_class("Plain", &Object::s_class, makeObject<Plain>);
const ClassEntry plainEntry(Plain::s_class);

const std::atomic<int>& living = testing::LifeMark::s_living;

TEST(Objects, LiveAsLongAsTheyAreReferredTo) {
    Object* const object = Plain::s_class.alloc()->init();
    EXPECT_EQ(object->retain(), object);
    EXPECT_EQ(object->retainCount(), 2u);
    EXPECT_EQ(object->copyWithZone(nullptr), nullptr);
    EXPECT_TRUE(object->isEqual(object) && !object->isEqual(nullptr));
    object->release();
    EXPECT_EQ(living, 1);
    object->release();
    EXPECT_EQ(living, 0);
    EXPECT_EQ(Object::s_class.alloc(), nullptr);
}

TEST(Objects, AreReleasedByTheInnermostPoolOrTheEndOfTheThread) {
    const AutoreleasePool outer;
    {
        const AutoreleasePool inner;
        auto* const first = static_cast<Plain*>(Plain::s_class.alloc());
        first->m_next = Plain::s_class.alloc();  // added while the pool is emptied
        EXPECT_EQ(first->autorelease(), first);
        EXPECT_EQ(living, 2);
    }
    EXPECT_EQ(living, 0);
    std::thread([] {
        EXPECT_NE(RunLoop::current(), nullptr);  // has an end of its own
        auto* const first = static_cast<Plain*>(Plain::s_class.alloc());
        first->m_next = Plain::s_class.alloc();
        first->autorelease();
        { const AutoreleasePool block; }  // is not the thread's
        EXPECT_EQ(living, 2);
    }).join();
    EXPECT_EQ(living, 0);
}

TEST(Classes, AreFoundByNameWhileTheyHaveAnEntry) {
    static constinit PlainClass late("Late", &Plain::s_class, nullptr);
    EXPECT_EQ(Class::named("Late"), nullptr);
    {
        std::optional<ClassEntry> entry(std::in_place, late);
        EXPECT_EQ(Class::named("Late"), &late);
        static constinit PlainClass other("Late", nullptr, nullptr);
        const ClassEntry newer(other);
        entry.reset();
        EXPECT_EQ(Class::named("Late"), &other);
        EXPECT_EQ(Class::named("Plain"), &Plain::s_class);
    }
    EXPECT_EQ(Class::named("Late"), nullptr);
    EXPECT_EQ(Class::named(""), nullptr);
    EXPECT_TRUE(late.isSubclassOf(late) && late.isSubclassOf(Object::s_class));
    EXPECT_FALSE(Object::s_class.isSubclassOf(late));
}

TEST(Monitors, LetOneThreadInAgainAndAgainAndOthersAfterIt) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20'000;
    int places[2] = {};
    testing::onThreads(kThreads, [&places](int) {
        for (int i = 0; i < kRounds; ++i) {
            int& place = places[i % 2];
            const InMonitor outer(&place);
            {
                const InMonitor inner(&place);
                ++place;
            }
            ++place;  // still inside
        }
    });
    EXPECT_EQ(places[0] + places[1], 2 * kThreads * kRounds);

    // An exception leaves it; else the thread below would wait for ever.
    const auto throwsInside = [&places] {
        const InMonitor guard(places);
        throw 1;
    };
    EXPECT_ANY_THROW(throwsInside());
    std::thread([&places] { const InMonitor guard(places); }).join();
}

TEST(Monitors, OfOtherThreadsAreFreeInAForkedChild) {
    int places[3] = {};
    std::atomic<int> held{0};
    std::atomic<bool> isOver{false};
    const auto hold = [&](int index) {
        const InMonitor guard(&places[index]);
        ++held;
        while (!isOver)
            std::this_thread::yield();
    };
    std::jthread waiting;
    const InMonitor ours(&places[0]);
    const std::jthread first(hold, 1), second(hold, 2);
    waiting = std::jthread([&places] { const InMonitor guard(&places[0]); });
    while (held < 2)
        std::this_thread::yield();
    EXPECT_TRUE(testing::holdsInChild([&places] {
        for (int round = 0; round < 2; ++round)
            for (int& place : places) {
                const InMonitor guard(&place);
                const InMonitor again(&place);
            }
        return true;
    }));
    isOver = true;
}

}  // namespace

}  // namespace veltra
