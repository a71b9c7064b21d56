// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/flyweight.h"

#include "veltra/base/exception.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/infrastructure/flyweight_pool.h"
#include "veltra/infrastructure/monitor.h"

namespace veltra {

constinit PlainClass QKFlyweight::s_class("QKFlyweight", &Object::s_class, nullptr);

namespace {

const ClassEntry flyweightEntry(QKFlyweight::s_class);

// The pooled equal of `some`, retained; `some` itself after pooling it; null when memory is out.
QKFlyweight* poolOrFind(QKFlyweight& some) {
    return unlessOutOfMemory(nullptr, [&]() -> QKFlyweight* {
        _QKPoolOfFlyweights* const pool = _QKPoolOfFlyweights::sharedInstance();
        if (pool == nullptr) return nullptr;
        // Around the retain, too: between the two another thread might take the object out.
        const InMonitor guard(pool);
        QKFlyweight* const existing = pool->addOrReturnFlyweight(some);
        if (existing == nullptr) return &some;
        existing->retain();
        return existing;
    });
}

void removeFromPool(QKFlyweight& some) {
    if (_QKPoolOfFlyweights* const pool = _QKPoolOfFlyweights::sharedInstance())
        pool->removeFlyweight(some);
}

}  // namespace

// Ends a set-up: who waits goes on, and an object whose set-up failed is given up.
class QKFlyweight::SetUp {
public:
    explicit SetUp(QKFlyweight& some) noexcept : m_some(some) {}
    SetUp(const SetUp&) = delete;
    SetUp& operator=(const SetUp&) = delete;
    ~SetUp() {
        State pooled = State::Pooled;
        const bool hasFailed = m_some.m_state.compare_exchange_strong(pooled, State::Failed);
        m_some.m_state.notify_all();
        if (!hasFailed) return;
        removeFromPool(m_some);
        m_some.release();
    }

private:
    QKFlyweight& m_some;
};

QKFlyweight* QKFlyweight::initWithHash(std::uint32_t hash) {
    if (Object::init() == nullptr) return nullptr;
    m_hash = hash;
    m_settingUp = std::this_thread::get_id();
    QKFlyweight* const shared = poolOrFind(*this);
    if (shared != this) {
        release();
        return whenSetUp(shared);
    }
    const SetUp setUp(*this);
    setupIntrinsicStateData();
    m_state.store(State::Ready, std::memory_order_release);  // with waitUntilSetUp()
    return this;
}

QKFlyweight* QKFlyweight::whenSetUp(QKFlyweight* shared) {
    if (shared == nullptr) return nullptr;
    State state = shared->m_state.load(std::memory_order_acquire);  // with initWithHash()
    while (state == State::Pooled && shared->m_settingUp != std::this_thread::get_id()) {
        shared->m_state.wait(state, std::memory_order_relaxed);
        state = shared->m_state.load(std::memory_order_acquire);
    }
    if (state != State::Failed) return shared;
    shared->release();
    return nullptr;
}

QKFlyweight* QKFlyweight::pooled(const Class& flyweightClass, std::uint32_t hash) {
    _QKPoolOfFlyweights* const pool = _QKPoolOfFlyweights::sharedInstance();
    if (pool == nullptr) return nullptr;
    return whenSetUp(pool->retainedFlyweight(flyweightClass.name(), hash));
}

Object* QKFlyweight::init() {
    raiseException("QKFlyweight", "-init: not the designated initializer");
}

void QKFlyweight::setupIntrinsicStateData() {}

bool QKFlyweight::isEqual(const Object* other) const noexcept {
    return other != nullptr && other->hash() == m_hash;
}

void QKFlyweight::release() {
    if (!m_autoRemoveFromPool.load(std::memory_order_acquire)) {  // with the setter
        Object::release();
        return;
    }
    const InMonitor guard(this);
    if (retainCount() == 2) removeFromPool(*this);  // the pool's, and the one given back here
    Object::release();
}

bool QKFlyweight::willAutoRemoveFromPool() const noexcept {
    return m_autoRemoveFromPool.load(std::memory_order_acquire);  // with the setter
}

void QKFlyweight::setWillAutoRemoveFromPool(bool flag) {
    const InMonitor guard(this);
    const bool isSwitchedOn =
        !m_autoRemoveFromPool.exchange(flag, std::memory_order_acq_rel) && flag;
    if (isSwitchedOn && retainCount() == 1) removeFromPool(*this);  // the end of this object
}

void QKFlyweight::releasePoolOfFlyweights(const Class& flyweightClass) {
    if (_QKPoolOfFlyweights* const pool = _QKPoolOfFlyweights::sharedInstance())
        pool->releasePoolOfFlyweightsOfClassName(flyweightClass.name());
}

}  // namespace veltra
