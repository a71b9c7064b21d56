// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/singleton.h"

#include "veltra/base/exception.h"
#include "veltra/base/number_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/infrastructure/monitor.h"
#include "veltra/platform/stack_walk.h"
#include "veltra/platform/symbol_names.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace veltra {

namespace {

// Releasing the register releases all that is on it, in rounds: the register's monitor is not held
// while a singleton is torn down, because threads that make one hold the singleton's and wait for
// the register's.
class CollectorClass : public SingletonClass {
public:
    using SingletonClass::SingletonClass;

    void releaseSharedInstance() override;

protected:
    ~CollectorClass() = default;
};

constexpr int kMostRounds = 8;

}  // namespace

// The register of singletons. Used under the monitor of its class only: else a teardown would free
// it under its user.
class _QKSingletonCollector : public QKSingleton {
public:
    static SlotClass<CollectorClass> s_class;
    Class& classObject() const noexcept override { return s_class; }

    // Throws std::bad_alloc.
    void _addSingleton(const Object& singleton) {
        if (&singleton != this) m_allSingletons.insert(singleton.classObject().name());
    }

    void _removeSingleton(const Object* singleton) noexcept {
        if (singleton != nullptr && singleton != this) strike(singleton->classObject().name());
    }

    void strike(std::string_view name) noexcept {
        const auto found = std::find(m_allSingletons.begin(), m_allSingletons.end(), name);
        if (found != m_allSingletons.end()) m_allSingletons.erase(found);
    }

    std::vector<std::string> names() const {
        return {m_allSingletons.begin(), m_allSingletons.end()};
    }

private:
    std::unordered_set<std::string>
        m_allSingletons;  // names, not objects: see releaseSharedInstance
};

constinit SlotClass<CollectorClass> _QKSingletonCollector::s_class(
    "_QKSingletonCollector", &QKSingleton::s_class, makeObject<_QKSingletonCollector>);
constinit PlainClass QKSingleton::s_class("QKSingleton", &Object::s_class, nullptr);

namespace {

const ClassEntry singletonEntry(QKSingleton::s_class);
const ClassEntry collectorEntry(_QKSingletonCollector::s_class);

// Null when memory is out. The monitor of its class is held.
_QKSingletonCollector* collector() {
    return static_cast<_QKSingletonCollector*>(_QKSingletonCollector::s_class.sharedInstance());
}

// "openSession() (session.cpp:42)", as far as it is known.
std::string textOf(const SymbolName& symbol, std::uintptr_t address) {
    std::string text = symbol.function.data();
    if (text.empty()) text.append("0x").append(NumberText::hexadecimal(address).view());
    std::string_view file = symbol.file.data();
    file.remove_prefix(file.find_last_of('/') + 1);
    if (!file.empty())
        text.append(" (").append(file).append(":").append(NumberText(symbol.line).view()) += ')';
    return text;
}

void CollectorClass::releaseSharedInstance() {
    for (int round = 0; round < kMostRounds; ++round) {
        std::vector<std::string> names;
        {
            const InMonitor guard(this);
            if (const auto* present = static_cast<_QKSingletonCollector*>(singleton()))
                names = present->names();
            if (names.empty()) {
                SingletonClass::releaseSharedInstance();
                return;
            }
        }
        for (const std::string& name : names) {
            // Struck off first: what is on the register afterwards was made anew.
            {
                const InMonitor guard(this);
                if (auto* present = static_cast<_QKSingletonCollector*>(singleton()))
                    present->strike(name);
            }
            if (auto* some = dynamic_cast<SingletonClass*>(Class::named(name)))
                some->releaseSharedInstance();
        }
    }
}

}  // namespace

Object* SingletonClass::sharedInstance() {
    const InMonitor guard(this);
    if (singleton() == nullptr) {
        std::array<std::uintptr_t, kMakers> calls;
        const std::size_t count = captureCalls(calls, 1);  // without this function
        Object* const made = alloc();
        if (made == nullptr) return nullptr;
        if (Object* const prepared = made->init()) {
            if (!registerInstance(*prepared)) {
                prepared->dealloc();
                setSingleton(nullptr);
                return nullptr;
            }
            setMakers(std::span(calls).first(count));
            instanceIsReady();
        }
    }
    return singleton();
}

void SingletonClass::setMakers(std::span<const std::uintptr_t> calls) noexcept {
    for (std::size_t i = 0; i < kMakers; ++i)
        m_makers[i].store(i < calls.size() ? calls[i] : 0, std::memory_order_relaxed);
}

std::string SingletonClass::makerName() const {
    std::string nearest;
    for (const auto& maker : m_makers) {
        const std::uintptr_t call = maker.load(std::memory_order_relaxed);
        if (call == 0) break;
        const SymbolName symbol = symbolNameOf(call);
        std::string name = textOf(symbol, call);
        if (std::string_view(symbol.function.data()).find("sharedInstance(") == std::string::npos)
            return name;
        if (nearest.empty()) nearest = std::move(name);
    }
    return nearest;
}

bool SingletonClass::registerInstance(const Object& instance) {
    const InMonitor guard(&_QKSingletonCollector::s_class);
    _QKSingletonCollector* const present = collector();
    if (present == nullptr) return false;
    return isDoneUnlessOutOfMemory([&] { present->_addSingleton(instance); });
}

void SingletonClass::releaseSharedInstance() {
    const InMonitor guard(this);
    {
        const InMonitor collecting(&_QKSingletonCollector::s_class);
        const Object* const instance = singleton();
        if (_QKSingletonCollector* const present = collector()) present->_removeSingleton(instance);
    }
    // Read again: the collector's own slot may have been filled by the look at the register.
    if (Object* const present = singleton()) present->dealloc();
    setSingleton(nullptr);
    setMakers({});
}

Object* SingletonClass::allocWithZone(void* zone) {
    const InMonitor guard(this);
    if (singleton() != nullptr) return nullptr;
    Object* const made = Class::allocWithZone(zone);
    if (made != nullptr) setSingleton(made);
    return made;
}

Object* SingletonClass::singleton() const {
    raiseException("ESSingleton", "+singleton not implemented");
}

void SingletonClass::setSingleton(Object* /*instance*/) {
    raiseException("ESSingleton", "+setSingleton: not implemented");
}

void SingletonClass::instanceIsReady() noexcept {}

void QKSingleton::releaseAllSingletons() {
    _QKSingletonCollector::s_class.releaseSharedInstance();
}

std::string QKSingleton::livingReport() {
    std::string report;
    for (const Living& one : livingSingletons()) {
        report += one.className;
        const auto* const some = dynamic_cast<const SingletonClass*>(one.classObject);
        const std::string maker = some != nullptr ? some->makerName() : std::string();
        if (!maker.empty()) report.append(": first asked for by ").append(maker);
        report += '\n';
    }
    return report;
}

std::vector<QKSingleton::Living> QKSingleton::livingSingletons() {
    std::vector<std::string> names;
    {
        const InMonitor guard(&_QKSingletonCollector::s_class);
        if (const auto* present =
                static_cast<_QKSingletonCollector*>(_QKSingletonCollector::s_class.singleton()))
            names = present->names();
    }
    std::sort(names.begin(), names.end());
    std::vector<Living> living;
    for (std::string& name : names) {
        const auto* some = dynamic_cast<SingletonClass*>(Class::named(name));
        living.push_back({some, std::move(name), some != nullptr ? some->madeBy() : 0});
    }
    return living;
}

}  // namespace veltra
