// SPDX-License-Identifier: MIT
// Shared immutable values: two of one class with the same hash are one object.
//
//   class NoteName : public QKFlyweight {
//   public:
//       static PlainClass s_class;
//       Class& classObject() const noexcept override { return s_class; }
//       static NoteName* forNote(std::uint32_t note) { return flyweight<NoteName>(note); }
//       void setupIntrinsicStateData() override { m_text = ...; }      // once for each note
//   };
//
// Whoever asks for a value owns a reference to it. The pool has one of its own, so that the value
// stays for the next caller, until the pool of its class is dropped. A value with auto-removal
// leaves the pool with its last user instead. Before a module is unloaded, it must drop the pools
// of its classes.
#pragma once

#include "veltra/export.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/object.h"

#include <atomic>
#include <cstdint>
#include <thread>

namespace veltra {

// Thread: any. Realtime-safe: no, pool and objects are locked by turns.
class VELTRA_EXPORT QKFlyweight : public Object {
public:
    static PlainClass s_class;  // "QKFlyweight"

    // The one init function. Returns this object, now pooled and set up, or the pooled object of
    // the same class and hash, with a reference for the caller and after releasing this one. Waits
    // while another thread sets that object up. Null when memory is out or that set-up fails, after
    // releasing this one. What setupIntrinsicStateData() throws leaves unchanged, and the object is
    // taken out of the pool and released.
    QKFlyweight* initWithHash(std::uint32_t hash);

    // Raises "QKFlyweight" with "-init: not the designated initializer".
    Object* init() override;

    // For subclasses: builds what is shared. Called once for each object that enters the pool.
    virtual void setupIntrinsicStateData();

    // The pooled object of exactly this class with that hash, set up, with a reference for the
    // caller; null when there is none, or its set-up fails. Makes nothing.
    static QKFlyweight* pooled(const Class& flyweightClass, std::uint32_t hash);

    // The hash that was given to initWithHash(). No subclass may change it, because the pool finds
    // objects by it.
    std::uint32_t hash() const noexcept final { return m_hash; }

    // Whether `other` has the same hash, of whatever class it is. False for null.
    bool isEqual(const Object* other) const noexcept override;

    // With auto-removal, the release that leaves only the pool's reference takes the object out of
    // the pool and so destroys it. A retain() by another thread in this very moment keeps the
    // object, outside of the pool.
    void release() override;

    // Whether the object leaves the pool with its last user. Off to begin with. Switching it on
    // when only the pool holds the object takes it out at once, which destroys it.
    bool willAutoRemoveFromPool() const noexcept;
    void setWillAutoRemoveFromPool(bool flag);

    // Drops all pooled objects of exactly this class. Those still in use live on, unpooled.
    static void releasePoolOfFlyweights(const Class& flyweightClass);

private:
    class SetUp;
    enum class State : std::uint8_t { Pooled, Ready, Failed };

    // Waits while another thread sets `shared` up. Returns it, or null after releasing it when the
    // set-up failed.
    static QKFlyweight* whenSetUp(QKFlyweight* shared);

    std::uint32_t m_hash = 0;
    std::atomic<bool> m_autoRemoveFromPool{false};
    std::atomic<State> m_state{State::Pooled};
    std::thread::id m_settingUp;  // written before the object is pooled
};

// The value of class T with that hash, with a reference for the caller; null when memory is out.
template <class T>
T* flyweight(std::uint32_t hash) {
    if (QKFlyweight* const found = QKFlyweight::pooled(T::s_class, hash))
        return static_cast<T*>(found);
    Object* const made = T::s_class.alloc();
    return made != nullptr ? static_cast<T*>(static_cast<T*>(made)->initWithHash(hash)) : nullptr;
}

}  // namespace veltra
