// SPDX-License-Identifier: MIT
#include "veltra/platform/thread_end.h"

#include <pthread.h>

namespace veltra {

namespace {

class Key {
public:
    explicit Key(void (*function)() noexcept) noexcept {
        s_function = function;
        m_isMade = ::pthread_key_create(&m_key, [](void*) { s_function(); }) == 0;
    }

    // What is kept under the key does not matter, as long as it is something.
    bool setOnThisThread() const noexcept {
        return m_isMade && ::pthread_setspecific(m_key, this) == 0;
    }

private:
    static inline void (*s_function)() noexcept = nullptr;

    pthread_key_t m_key{};
    bool m_isMade = false;
};

}  // namespace

bool callAtThreadEnd(void (*function)() noexcept) noexcept {
    static const Key key(function);
    return key.setOnThisThread();
}

}  // namespace veltra
