// SPDX-License-Identifier: MIT
// An object that is made on first use and never destroyed: exit handlers may still use it.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace veltra {

template <typename T>
class Immortal {
public:
    template <typename... Arguments>
    explicit Immortal(Arguments&&... arguments)
        : m_object(new (m_memory) T(std::forward<Arguments>(arguments)...)) {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() const noexcept { return *m_object; }

private:
    alignas(T) std::byte m_memory[sizeof(T)];
    T* m_object;
};

}  // namespace veltra
