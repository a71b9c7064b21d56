// SPDX-License-Identifier: MIT
// A singleton, a shared value with its pool, and what is still alive at the end.
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/singleton.h"

#include <cstdio>
#include <string>

using veltra::Class;
using veltra::ClassEntry;
using veltra::PlainClass;
using veltra::QKFlyweight;
using veltra::QKSingleton;
using veltra::SlotClass;

class Session : public QKSingleton {
public:
    static SlotClass<> s_class;
    Class& classObject() const noexcept override { return s_class; }
    static Session* sharedInstance() { return static_cast<Session*>(s_class.sharedInstance()); }

    int takes = 0;
};

constinit SlotClass<> Session::s_class("Session", &QKSingleton::s_class,
                                       veltra::makeObject<Session>);
const ClassEntry sessionEntry(Session::s_class);

class NoteName : public QKFlyweight {
public:
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }

    void setupIntrinsicStateData() override {
        static const char* const kNames[] = {"C",  "C#", "D",  "D#", "E",  "F",
                                             "F#", "G",  "G#", "A",  "A#", "B"};
        text = kNames[hash() % 12] + std::to_string(static_cast<int>(hash() / 12) - 2);
    }

    std::string text;
};

constinit PlainClass NoteName::s_class("NoteName", &QKFlyweight::s_class,
                                       veltra::makeObject<NoteName>);
const ClassEntry noteNameEntry(NoteName::s_class);

bool countTakes() {
    Session::sharedInstance()->takes += 1;
    Session::sharedInstance()->takes += 1;
    return Session::sharedInstance()->takes == 2;
}

bool shareNames() {
    NoteName* const one = veltra::flyweight<NoteName>(60);
    NoteName* const same = veltra::flyweight<NoteName>(60);
    std::printf("%s is %s\n", one->text.c_str(), one == same ? "shared" : "made twice");
    const bool isShared = one == same;
    same->release();
    one->release();  // stays in the pool for the next who asks
    QKFlyweight::releasePoolOfFlyweights(NoteName::s_class);
    return isShared;
}

int main() {
    const bool isRight = countTakes() && shareNames();

    for (const QKSingleton::Living& one : QKSingleton::livingSingletons())
        std::printf("still alive: %s\n", one.className.c_str());
    QKSingleton::releaseAllSingletons();
    return isRight && QKSingleton::livingSingletons().empty() ? 0 : 1;
}
