// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/object.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/platform/thread_end.h"

#include <new>
#include <utility>

namespace veltra {

namespace {

constinit thread_local AutoreleasePool* innermostPool = nullptr;
constinit thread_local AutoreleasePool* threadPool = nullptr;  // of objects that found no pool

void endThreadPool() noexcept {
    delete std::exchange(threadPool, nullptr);
}

const ClassEntry objectEntry(Object::s_class);

}  // namespace

constinit PlainClass Object::s_class("Object", nullptr, nullptr);

Object::~Object() = default;

Object* Object::init() {
    return this;
}

Object* Object::retain() {
    m_retainCount.fetch_add(1, std::memory_order_relaxed);
    return this;
}

void Object::release() {
    // Each release comes before the dealloc() that the last one starts.
    if (m_retainCount.fetch_sub(1, std::memory_order_acq_rel) == 1) dealloc();
}

Object* Object::autorelease() {
    AutoreleasePool::collect(*this);
    return this;
}

std::uint32_t Object::retainCount() const noexcept {
    return m_retainCount.load(std::memory_order_relaxed);
}

Object* Object::copyWithZone(void* /*zone*/) {
    return nullptr;
}

std::uint32_t Object::hash() const noexcept {
    // The lowest four bits of an address are always the same.
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this) >> 4);
}

bool Object::isEqual(const Object* other) const noexcept {
    return other == this;
}

void Object::dealloc() {
    delete this;
}

AutoreleasePool::AutoreleasePool() noexcept : m_outer(innermostPool) {
    innermostPool = this;
}

AutoreleasePool::~AutoreleasePool() {
    innermostPool = this;  // for a thread's own pool, which ends outside of any block
    for (std::size_t i = 0; i < m_objects.size(); ++i)  // grows while it runs
        m_objects[i]->release();
    innermostPool = m_outer;
}

bool AutoreleasePool::collect(Object& object) noexcept {
    if (innermostPool == nullptr && threadPool == nullptr) {
        static const ThreadEnd end(endThreadPool);
        if (!end.callOnThisThread()) return false;
        threadPool = new (std::nothrow) AutoreleasePool;
        if (threadPool == nullptr) return false;
        innermostPool = nullptr;  // it waits for the end of the thread, below every block's pool
    }
    AutoreleasePool& pool = innermostPool != nullptr ? *innermostPool : *threadPool;
    return isDoneUnlessOutOfMemory([&] { pool.m_objects.push_back(&object); });
}

}  // namespace veltra
