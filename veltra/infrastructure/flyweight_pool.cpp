// SPDX-License-Identifier: MIT
// Objects are released after the pool's monitor is left: a last release() runs a stranger's code,
// and an object that removes itself holds its own monitor when it asks for the pool's.
#include "veltra/infrastructure/flyweight_pool.h"

#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/monitor.h"

#include <utility>

namespace veltra {

constinit SlotClass<> _QKPoolOfFlyweights::s_class("_QKPoolOfFlyweights", &QKSingleton::s_class,
                                                   makeObject<_QKPoolOfFlyweights>);

namespace {

const ClassEntry poolEntry(_QKPoolOfFlyweights::s_class);

}  // namespace

QKFlyweight* _QKPoolOfFlyweights::addOrReturnFlyweight(QKFlyweight& some) {
    const std::string_view name = some.classObject().name();
    const std::uint32_t hash = some.hash();
    const InMonitor guard(this);
    auto set = m_thePool.find(name);
    if (set == m_thePool.end()) set = m_thePool.try_emplace(std::string(name)).first;
    const auto [entry, isNew] = set->second.try_emplace(hash, &some);
    if (!isNew) return entry->second;
    some.retain();
    return nullptr;
}

QKFlyweight* _QKPoolOfFlyweights::retainedFlyweight(std::string_view name,
                                                    std::uint32_t hash) const {
    const InMonitor guard(this);
    QKFlyweight* const found = find(name, hash);
    if (found != nullptr) found->retain();
    return found;
}

QKFlyweight* _QKPoolOfFlyweights::find(std::string_view name, std::uint32_t hash) const {
    const auto set = m_thePool.find(name);
    if (set == m_thePool.end()) return nullptr;
    const auto entry = set->second.find(hash);
    return entry != set->second.end() ? entry->second : nullptr;
}

void _QKPoolOfFlyweights::removeFlyweight(QKFlyweight& some) {
    const std::string_view name = some.classObject().name();
    {
        const InMonitor guard(this);
        if (find(name, some.hash()) != &some) return;
        m_thePool.find(name)->second.erase(some.hash());
    }
    some.release();
}

void _QKPoolOfFlyweights::releasePoolOfFlyweightsOfClassName(std::string_view name) {
    Set dropped;
    {
        const InMonitor guard(this);
        const auto set = m_thePool.find(name);
        if (set == m_thePool.end()) return;
        dropped = std::move(set->second);
        m_thePool.erase(set);
    }
    releaseAll(dropped);
}

void _QKPoolOfFlyweights::dealloc() {
    decltype(m_thePool) dropped;
    {
        const InMonitor guard(this);
        dropped.swap(m_thePool);
    }
    for (const auto& entry : dropped)
        releaseAll(entry.second);
    QKSingleton::dealloc();
}

void _QKPoolOfFlyweights::releaseAll(const Set& set) {
    for (const auto& entry : set)
        entry.second->release();
}

}  // namespace veltra
