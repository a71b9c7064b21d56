// SPDX-License-Identifier: MIT
// The root of counted objects.
//
// An object is made in two phases, by its class object: alloc() makes it with a count of 1, then
// init() prepares it. A caller owns one reference and gives it back with release(); the last one
// ends in dealloc(). Counted objects exist where identity and lifetime are the point: singletons
// and shared values. Everything else in the library is an ordinary C++ value.
#pragma once

#include "veltra/export.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace veltra {

class Class;
class PlainClass;

// Thread: any for counting; each class says it of its other functions. Realtime-safe: no, a release
// may end in dealloc().
class VELTRA_EXPORT Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    static PlainClass s_class;  // "Object", of which nothing can be made

    // The class of which this object was made.
    virtual Class& classObject() const noexcept = 0;

    // The second phase. Returns the object to go on with: this one; another one, after releasing
    // this one; or null, after releasing this one.
    virtual Object* init();

    // Takes a reference. Returns this object.
    virtual Object* retain();

    // Gives a reference back. The last one destroys the object.
    virtual void release();

    // Hands a reference to the innermost AutoreleasePool of this thread, which gives it back when
    // it ends. Without a pool the reference is kept until the thread ends, on the main thread and
    // when memory is out for ever. Returns this object.
    virtual Object* autorelease();

    // References at this moment. Only a caller that knows of all of them can use the number.
    virtual std::uint32_t retainCount() const noexcept;

    // A new object of equal value, owned by the caller. Null for a class without copies, such as
    // this one. `zone` is not used.
    virtual Object* copyWithZone(void* zone);

    // Equal objects have equal hashes. Here: one that follows from the address.
    virtual std::uint32_t hash() const noexcept;

    // Here: whether `other` is this object. False for null.
    virtual bool isEqual(const Object* other) const noexcept;

    // Ends the object's life; the last release() calls it. A class that owns something overrides
    // it, gives up what it owns, and then calls the dealloc() of its base, which frees the memory.
    virtual void dealloc();

protected:
    Object() noexcept = default;
    virtual ~Object();

private:
    std::atomic<std::uint32_t> m_retainCount{1};
};

// Collects references until the end of a block:
//
//   {
//       const AutoreleasePool pool;
//       Object* shape = makeShape()->autorelease();    // valid until the end of the block
//   }
//
// Pools of a thread nest. Thread: one; pools end in the reverse order of their beginning.
class VELTRA_EXPORT AutoreleasePool {
public:
    AutoreleasePool() noexcept;
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

    // Releases what was collected, first in first out, and what these releases add. An exception
    // from a dealloc() ends the process.
    ~AutoreleasePool();

private:
    friend class Object;

    static bool collect(Object& object) noexcept;

    std::vector<Object*> m_objects;
    AutoreleasePool* m_outer;
};

}  // namespace veltra
