// SPDX-License-Identifier: MIT
// Objects of which a process has one each: made when first asked for, not counted, and all torn
// down by one call.
//
//   // session.h
//   class Session : public QKSingleton {
//   public:
//       static SlotClass<> s_class;
//       Class& classObject() const noexcept override { return s_class; }
//       static Session* sharedInstance() {
//           return static_cast<Session*>(s_class.sharedInstance());
//       }
//   };
//   // session.cpp
//   constinit SlotClass<> Session::s_class("Session", &QKSingleton::s_class, makeObject<Session>);
//   const ClassEntry sessionEntry(Session::s_class);
//
// Nothing is torn down by itself at the end of the process: a host calls
// QKSingleton::releaseAllSingletons() before. Whoever still uses an instance while it is torn down
// uses a dead object.
#pragma once

#include "veltra/export.h"
#include "veltra/infrastructure/class_object.h"
#include "veltra/infrastructure/object.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace veltra {

// The class object of a singleton class. It does not say where the instance is kept: a concrete
// class uses SlotClass, or derives from this one and overrides singleton() and setSingleton().
// Thread: any. Realtime-safe: no, but for SlotClass::sharedInstance() once the instance is there.
class VELTRA_EXPORT SingletonClass : public Class {
public:
    using Class::Class;

    // Returns the instance. If there is none, makes it: alloc(), init(), and registration for
    // releaseAllSingletons(). While init() runs, a call from it gets the object that is being
    // prepared; calls of other threads wait. The slot keeps the object that alloc() made, whatever
    // init() returns; when init() returns null, the instance is not registered. Null when memory is
    // out; then nothing was made. Exceptions of singleton(), setSingleton() and init() pass
    // through.
    Object* sharedInstance();

    // Takes the instance off the register, calls its dealloc() and empties the slot, in this order.
    // Without an instance only the register is made. The next sharedInstance() makes a new one.
    virtual void releaseSharedInstance();

    // Makes the instance and stores it, only if there is none; else returns null.
    Object* allocWithZone(void* zone) override;

    // Read and write the slot. In this class they raise "ESSingleton", with "+singleton not
    // implemented" and "+setSingleton: not implemented", because each concrete class has a slot of
    // its own.
    virtual Object* singleton() const;
    virtual void setSingleton(Object* instance);

    // Who was the first to ask for the present instance: an address in the caller of
    // sharedInstance(). 0 without a registered instance.
    std::uintptr_t madeBy() const noexcept { return m_makers[0].load(std::memory_order_relaxed); }

    // The same as text, for example "openSession() (session.cpp:42)": the nearest of four callers
    // that is not itself called sharedInstance. An address where the name is not known; empty
    // without a registered instance. The first name that a process asks for may take a tenth of a
    // second.
    // Throws std::bad_alloc.
    std::string makerName() const;

protected:
    ~SingletonClass() = default;

    // The instance is prepared and registered. The class's monitor is held.
    virtual void instanceIsReady() noexcept;

private:
    static bool registerInstance(const Object& instance);

    void setMakers(std::span<const std::uintptr_t> calls) noexcept;

    static constexpr std::size_t kMakers = 4;
    std::array<std::atomic<std::uintptr_t>, kMakers> m_makers{};  // innermost first
};

// A singleton class with a slot. Base: SingletonClass, or a class derived from it.
template <class Base = SingletonClass>
class SlotClass final : public Base {
public:
    using Base::Base;

    // The instance, made if there is none: see SingletonClass::sharedInstance(). Once it is ready:
    // one load, no lock.
    Object* sharedInstance() {
        // With instanceIsReady(): what init() wrote is seen.
        if (Object* const ready = m_ready.load(std::memory_order_acquire)) return ready;
        return Base::sharedInstance();
    }

    Object* singleton() const override { return m_slot.load(std::memory_order_acquire); }

    void setSingleton(Object* instance) override {
        m_ready.store(nullptr, std::memory_order_relaxed);
        m_slot.store(instance, std::memory_order_release);  // with singleton()
    }

protected:
    void instanceIsReady() noexcept override {
        m_ready.store(singleton(), std::memory_order_release);  // with sharedInstance()
    }

private:
    std::atomic<Object*> m_slot{nullptr};   // from alloc() on: init() may ask for it
    std::atomic<Object*> m_ready{nullptr};  // from the end of the registration on
};

// The base of singletons. Counting is switched off: only releaseSharedInstance() of the class, or
// releaseAllSingletons(), ends an instance.
class VELTRA_EXPORT QKSingleton : public Object {
public:
    static PlainClass s_class;  // "QKSingleton", without a slot

    // Tears down every registered singleton, in no particular order, and then the register. One
    // that is made again meanwhile, by the dealloc() of another, is torn down as well. After eight
    // rounds it gives up on those that keep coming back.
    // Thread: any; no other thread may use a singleton meanwhile. Realtime-safe: no.
    static void releaseAllSingletons();

    // One registered singleton.
    struct Living {
        const Class* classObject;  // null for one whose module is gone
        std::string className;     // copied, so that it outlives the module
        std::uintptr_t madeBy;     // see SingletonClass::madeBy()
    };

    // The registered singletons, sorted by name: what releaseAllSingletons() would tear down. To
    // find out at exit who has made what, and from where. Throws std::bad_alloc.
    // Thread: any. Realtime-safe: no.
    static std::vector<Living> livingSingletons();

    // The same as text, one line each: "Session: first asked for by openSession()
    // (session.cpp:42)". Log it before releaseAllSingletons(). Throws std::bad_alloc.
    // Thread: any. Realtime-safe: no.
    static std::string livingReport();

    QKSingleton* retain() override { return this; }
    void release() override {}
    QKSingleton* autorelease() override { return this; }
    std::uint32_t retainCount() const noexcept override { return UINT32_MAX; }
    QKSingleton* copyWithZone(void* /*zone*/) override { return this; }
};

}  // namespace veltra
