// SPDX-License-Identifier: MIT
// Class objects: what a class is called, what it derives from, and how its objects are made.
//
// Each class of counted objects has one, defined beside the class's code as a constant-initialised
// object, and a ClassEntry that makes it known by name:
//
//   // tempo_map.h
//   class TempoMap : public Object {
//   public:
//       static PlainClass s_class;
//       Class& classObject() const noexcept override { return s_class; }
//   };
//   // tempo_map.cpp
//   constinit PlainClass TempoMap::s_class("TempoMap", &Object::s_class, makeObject<TempoMap>);
//   const ClassEntry tempoMapEntry(TempoMap::s_class);
//
// When a module is loaded later, its classes become known; when it is unloaded, they are forgotten.
// Their objects must be gone by then, because their code goes with the module.
#pragma once

#include "veltra/export.h"

#include <new>
#include <string_view>

namespace veltra {

class Object;

class VELTRA_EXPORT Class {
public:
    // A function that makes a new object of the class.
    using Factory = Object* (*)();

    // `name` is a string literal, or lives as long as one. `superclass` may be null. `factory`
    // makes a bare object, or returns null when memory is out. With a null factory no object can be
    // made.
    constexpr Class(const char* name, Class* superclass, Factory factory) noexcept
        : m_name(name), m_superclass(superclass), m_factory(factory) {}
    Class(const Class&) = delete;
    Class& operator=(const Class&) = delete;

    // Thread: any. Realtime-safe: yes.
    const char* name() const noexcept { return m_name; }
    Class* superclass() const noexcept { return m_superclass; }

    // Whether this class is `ancestor` or derives from it.
    // Thread: any. Realtime-safe: yes.
    bool isSubclassOf(const Class& ancestor) const noexcept;

    // The first phase: a new object with a count of 1, to be prepared by one of its init functions.
    // Null when memory is out, or when the class has no factory. Exceptions of the object's
    // constructor pass through.
    // Thread: any. Realtime-safe: no.
    Object* alloc() { return allocWithZone(nullptr); }
    virtual Object* allocWithZone(void* zone);

    // The class of that name that has a ClassEntry; null when there is none. When several have the
    // name, the latest one.
    // Thread: any. Realtime-safe: no, it may wait for another look-up.
    static Class* named(std::string_view name) noexcept;

protected:
    ~Class() = default;  // never called through: class objects stay for good

private:
    const char* m_name;
    Class* m_superclass;
    Factory m_factory;
};

// The class object of an ordinary class.
class VELTRA_EXPORT PlainClass final : public Class {
public:
    using Class::Class;
};

// The usual factory.
template <typename T>
Object* makeObject() {
    return new (std::nothrow) T;
}

// Makes a class known by its name, as long as the entry lives. Define it at namespace scope, beside
// the class object.
// Thread: any. Realtime-safe: no.
class VELTRA_EXPORT ClassEntry {
public:
    // Makes `described` known, before all others of its name. It must outlive the entry.
    explicit ClassEntry(Class& described) noexcept;
    ClassEntry(const ClassEntry&) = delete;
    ClassEntry& operator=(const ClassEntry&) = delete;
    ~ClassEntry();

private:
    friend class Class;

    Class& m_class;
    ClassEntry* m_next;
};

}  // namespace veltra
