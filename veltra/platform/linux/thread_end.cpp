// SPDX-License-Identifier: MIT
#include "veltra/platform/thread_end.h"

#include <pthread.h>

namespace veltra {

ThreadEnd::ThreadEnd(void (*function)() noexcept) noexcept : m_function(function) {
    const auto call = [](void* self) { static_cast<const ThreadEnd*>(self)->m_function(); };
    pthread_key_t key{};
    m_isMade = ::pthread_key_create(&key, call) == 0;
    m_key = key;
}

bool ThreadEnd::callOnThisThread() const noexcept {
    return m_isMade && ::pthread_setspecific(static_cast<pthread_key_t>(m_key), this) == 0;
}

}  // namespace veltra
