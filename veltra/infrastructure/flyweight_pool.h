// SPDX-License-Identifier: MIT
// The pool behind QKFlyweight: one set of objects for each class name, no two with one hash.
#pragma once

#include "veltra/export.h"
#include "veltra/infrastructure/singleton.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace veltra {

class QKFlyweight;

// Thread: any. Realtime-safe: no.
class VELTRA_EXPORT _QKPoolOfFlyweights : public QKSingleton {
public:
    static SlotClass<> s_class;  // "_QKPoolOfFlyweights"
    Class& classObject() const noexcept override { return s_class; }

    // Null when memory is out.
    static _QKPoolOfFlyweights* sharedInstance() {
        return static_cast<_QKPoolOfFlyweights*>(s_class.sharedInstance());
    }

    // Returns the pooled object that is equal to `some` and of its class, not retained: a caller
    // that keeps it holds this pool's monitor around both. Else pools and retains `some` and
    // returns null. Throws std::bad_alloc.
    QKFlyweight* addOrReturnFlyweight(QKFlyweight& some);

    // The pooled object of that class name and hash, retained for the caller, or null.
    QKFlyweight* retainedFlyweight(std::string_view name, std::uint32_t hash) const;

    // Takes out and releases `some`, if it is the very object in the pool.
    void removeFlyweight(QKFlyweight& some);

    // Takes out and releases all of one class. Unknown names are passed over.
    void releasePoolOfFlyweightsOfClassName(std::string_view name);

    // Takes out and releases all.
    void dealloc() override;

private:
    using Set = std::unordered_map<std::uint32_t, QKFlyweight*>;

    QKFlyweight* find(std::string_view name, std::uint32_t hash) const;
    static void releaseAll(const Set& set);

    std::map<std::string, Set, std::less<>> m_thePool;  // by class name; this object's monitor
};

}  // namespace veltra
