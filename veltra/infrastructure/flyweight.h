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
// What a caller gets carries a reference for it. The pool keeps one of its own, so that a value
// stays for the next who asks for it, until the pool of its class is dropped. A value with
// auto-removal leaves with its last user instead. A module that is unloaded drops the pools of its
// classes before.
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

    // The identity given to initWithHash().
    std::uint32_t hash() const noexcept override { return m_hash; }

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

    // True at once on the thread that sets the object up.
    bool waitUntilSetUp() const noexcept;

    std::uint32_t m_hash = 0;
    std::atomic<bool> m_autoRemoveFromPool{false};
    std::atomic<State> m_state{State::Pooled};
    std::thread::id m_settingUp;  // written before the object is pooled
};

// The value of class T with that hash, with a reference for the caller; null when memory is out.
template <class T>
T* flyweight(std::uint32_t hash) {
    Object* const made = T::s_class.alloc();
    return made != nullptr ? static_cast<T*>(static_cast<T*>(made)->initWithHash(hash)) : nullptr;
}

}  // namespace veltra
