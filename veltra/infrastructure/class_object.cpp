// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/class_object.h"

#include "veltra/platform/fork_safe_lock.h"

#include <mutex>

namespace veltra {

namespace {

constinit ForkSafeLock entriesLock;
constinit ClassEntry* latestEntry = nullptr;  // under the lock

}  // namespace

bool Class::isSubclassOf(const Class& ancestor) const noexcept {
    const Class* some = this;
    while (some != nullptr && some != &ancestor)
        some = some->m_superclass;
    return some != nullptr;
}

Object* Class::allocWithZone(void* /*zone*/) {
    return m_factory != nullptr ? m_factory() : nullptr;
}

Class* Class::named(std::string_view name) noexcept {
    const std::scoped_lock lock(entriesLock);
    const ClassEntry* entry = latestEntry;
    while (entry != nullptr && entry->m_class.m_name != name)
        entry = entry->m_next;
    return entry != nullptr ? &entry->m_class : nullptr;
}

ClassEntry::ClassEntry(Class& described) noexcept : m_class(described) {
    entriesLock.holdAcrossForks();
    const std::scoped_lock lock(entriesLock);
    m_next = latestEntry;
    latestEntry = this;
}

ClassEntry::~ClassEntry() {
    const std::scoped_lock lock(entriesLock);
    ClassEntry** link = &latestEntry;
    while (*link != this)
        link = &(*link)->m_next;
    *link = m_next;
}

}  // namespace veltra
