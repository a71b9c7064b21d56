// SPDX-License-Identifier: MIT
// Weak pointers for objects that may be deleted while they are being called: controls, timers,
// their targets and delegates. An object that calls out keeps a weak pointer to itself, and checks
// it before it touches a member again:
//
//   const WeakPointer<Meter> self(this);
//   m_action.send(m_target.get(), this);    // may delete this meter
//   if (!self) return;
//
// The weak pointers of an object form a list that starts in the object: making one is a few stores
// and cannot fail, not even when memory is out. An object and all its weak pointers belong to one
// thread, in practice the main one.
#pragma once

#include "veltra/export.h"

#include <type_traits>

namespace veltra {

class Anchored;

namespace detail {

// A weak pointer's place in the list of its object.
class VELTRA_EXPORT WeakLink {
public:
    WeakLink(const WeakLink&) = delete;
    WeakLink& operator=(const WeakLink&) = delete;

protected:
    WeakLink() noexcept = default;
    ~WeakLink() { unlink(); }

    void link(const Anchored& object) noexcept;
    void unlink() noexcept;
    bool isLinked() const noexcept { return m_previous != nullptr; }

private:
    friend class veltra::Anchored;

    // Mutable: the object and the neighbours in its list reach into weak pointers that are const.
    mutable WeakLink* m_next = nullptr;
    mutable WeakLink** m_previous = nullptr;  // what points to this link; null: not in a list
};

}  // namespace detail

// The base of everything that weak pointers point to and that actions are sent to. A copy is an
// object of its own: it takes over no weak pointer.
class VELTRA_EXPORT Anchored {
public:
    Anchored() noexcept = default;

    // Takes over nothing: weak pointers to the other go on pointing to the other.
    Anchored(const Anchored& /*other*/) noexcept {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): assigns nothing at all
    Anchored& operator=(const Anchored& /*other*/) noexcept { return *this; }
    virtual ~Anchored();

protected:
    // From now on all weak pointers to this object are null, present and future ones. Without it
    // that happens at the very end of destruction, so a destructor that calls out starts with this.
    // Thread: the object's. Realtime-safe: no (as long as the list of weak pointers).
    void cutAnchor() noexcept;

private:
    friend class detail::WeakLink;

    mutable detail::WeakLink* m_firstWeakLink = nullptr;
    bool m_isCut = false;
};

// Points to a T as long as it lives, and is null afterwards. T derives from Anchored; it needs to
// be complete only where a pointer is stored. Thread: the object's. Realtime-safe: yes, all of it.
template <typename T>
class WeakPointer : private detail::WeakLink {
public:
    WeakPointer() noexcept = default;

    // Points to `object`, which may be null. Null also for an object whose anchor was cut.
    WeakPointer(T* object) noexcept { *this = object; }

    // Points to the object of the other, if that still lives.
    WeakPointer(const WeakPointer& other) noexcept : detail::WeakLink() { *this = other.get(); }
    ~WeakPointer() = default;

    // Lets go of the former object and points to that of the other, if it still lives.
    WeakPointer& operator=(const WeakPointer& other) noexcept {
        if (this != &other) *this = other.get();
        return *this;
    }

    // Lets go of the former object and points to this one, which may be null.
    WeakPointer& operator=(T* object) noexcept {
        static_assert(std::is_base_of_v<Anchored, T>);
        unlink();
        m_object = object;
        if (object != nullptr) link(*object);
        return *this;
    }

    // The object; null when there is none, when it is gone or its anchor was cut.
    T* get() const noexcept { return isLinked() ? m_object : nullptr; }

    // The object, to reach its members. May be null: look before, as with a plain pointer.
    T* operator->() const noexcept { return get(); }

    // Whether the object still lives; false for none.
    explicit operator bool() const noexcept { return isLinked(); }

private:
    T* m_object = nullptr;
};

}  // namespace veltra
