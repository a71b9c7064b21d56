// SPDX-License-Identifier: MIT
// Classes of a module that a host loads and unloads while it runs.
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/singleton.h"

#include <atomic>
#include <thread>

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(PlugIn, HasItsClassesFoundByNameWhileItIsLoaded) {
    std::atomic<bool> isOver{false};
    std::thread looking([&isOver] {
        while (!isOver)
            Class::named("Object");
    });
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(Class::named("LateValue"), nullptr);
        void* const module = ::dlopen(VELTRA_PLUG_IN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module, nullptr) << ::dlerror();

        Class* const values = Class::named("LateValue");
        ASSERT_NE(values, nullptr);
        EXPECT_EQ(values->superclass(), &QKFlyweight::s_class);
        auto* const one = static_cast<QKFlyweight*>(values->alloc())->initWithHash(7);
        EXPECT_EQ(QKFlyweight::pooled(*values, 7), one);
        one->release();
        one->release();
        QKFlyweight::releasePoolOfFlyweights(*values);

        // Left on the register.
        auto* const sessions = dynamic_cast<SingletonClass*>(Class::named("LateSession"));
        ASSERT_NE(sessions, nullptr);
        EXPECT_EQ(sessions->sharedInstance(), sessions->sharedInstance());
        EXPECT_NE(QKSingleton::livingReport().find("LateSession: "), std::string::npos);

        ::dlclose(module);
        ASSERT_EQ(::dlopen(VELTRA_PLUG_IN, RTLD_NOW | RTLD_NOLOAD), nullptr);
        EXPECT_EQ(Class::named("LateValue"), nullptr);
        EXPECT_EQ(Class::named("LateSession"), nullptr);
        EXPECT_NE(QKSingleton::livingReport().find("LateSession\n"), std::string::npos);
        QKSingleton::releaseAllSingletons();  // passes over it
        EXPECT_EQ(QKSingleton::livingReport(), "");
    }
    isOver = true;
    looking.join();
}

}  // namespace
}  // namespace veltra
