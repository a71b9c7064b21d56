// SPDX-License-Identifier: MIT
// Classes for the tests of counted objects: each object carries a mark while it lives, and the
// living are counted.
#pragma once

#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/singleton.h"

#include <atomic>
#include <functional>

namespace veltra::testing {

struct LifeMark {
    static constexpr std::uint32_t kAlive = 0xA11FE000;
    static inline std::atomic<int> s_living{0};

    LifeMark() { ++s_living; }
    LifeMark(const LifeMark&) = delete;
    LifeMark& operator=(const LifeMark&) = delete;
    ~LifeMark() {
        m_mark = 0;
        --s_living;
    }
    bool isAlive() const { return m_mark == kAlive; }

private:
    std::atomic<std::uint32_t> m_mark{kAlive};
};

// `Tag` makes classes apart. Hooks: what init() returns, and what dealloc() does first.
template <int Tag>
struct Single : QKSingleton, LifeMark {
    static SlotClass<> s_class;
    static inline std::function<Object*(Single&)> s_init;
    static inline std::function<void()> s_dealloc;

    static Single* sharedInstance() { return static_cast<Single*>(s_class.sharedInstance()); }
    Class& classObject() const noexcept override { return s_class; }
    Object* init() override { return s_init ? s_init(*this) : QKSingleton::init(); }
    void dealloc() override {
        if (s_dealloc) s_dealloc();
        QKSingleton::dealloc();
    }

private:
    static constexpr char kName[] = {'S', 'i', 'n', 'g', 'l', 'e', 'A' + Tag, 0};
    static const ClassEntry s_entry;
};

template <int Tag>
constinit SlotClass<> Single<Tag>::s_class(kName, &QKSingleton::s_class, makeObject<Single<Tag>>);
template <int Tag>
const ClassEntry Single<Tag>::s_entry(s_class);

template <int Tag>
struct Value : QKFlyweight, LifeMark {
    static PlainClass s_class;
    static inline std::function<void(Value&)> s_setUp;
    static inline std::atomic<int> s_setUps{0};

    static Value* get(std::uint32_t hash) { return flyweight<Value>(hash); }
    Class& classObject() const noexcept override { return s_class; }
    void setupIntrinsicStateData() override {
        ++s_setUps;
        if (s_setUp) s_setUp(*this);
    }

private:
    static constexpr char kName[] = {'V', 'a', 'l', 'u', 'e', 'A' + Tag, 0};
};

template <int Tag>
constinit PlainClass Value<Tag>::s_class(kName, &QKFlyweight::s_class, makeObject<Value<Tag>>);

}  // namespace veltra::testing
