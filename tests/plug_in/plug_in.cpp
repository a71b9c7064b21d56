// SPDX-License-Identifier: MIT
// A module that is loaded late and unloaded, with classes of its own.
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/singleton.h"

namespace {

class LateValue : public veltra::QKFlyweight {
public:
    static veltra::PlainClass s_class;
    veltra::Class& classObject() const noexcept override { return s_class; }
};

constinit veltra::PlainClass LateValue::s_class("LateValue", &veltra::QKFlyweight::s_class,
                                                veltra::makeObject<LateValue>);
const veltra::ClassEntry lateValueEntry(LateValue::s_class);

class LateSession : public veltra::QKSingleton {
public:
    static veltra::SlotClass<> s_class;
    veltra::Class& classObject() const noexcept override { return s_class; }
};

// Not of the heap: what is left in an unloaded module would be leaked there.
veltra::Object* makeLateSession() {
    alignas(LateSession) static unsigned char memory[sizeof(LateSession)];
    return new (memory) LateSession;
}

constinit veltra::SlotClass<> LateSession::s_class("LateSession", &veltra::QKSingleton::s_class,
                                                   makeLateSession);
const veltra::ClassEntry lateSessionEntry(LateSession::s_class);

}  // namespace
