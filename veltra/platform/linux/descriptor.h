// SPDX-License-Identifier: MIT
// A file descriptor that its holder owns and closes.
#pragma once

#include <utility>

#include <unistd.h>

namespace veltra {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) noexcept : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    int number() const noexcept { return m_number; }
    // Hands the number to the caller, who closes it.
    int release() noexcept { return std::exchange(m_number, -1); }
    bool isOpen() const noexcept { return m_number >= 0; }

    // An interrupted close has closed on Linux: never repeated.
    void close() noexcept {
        if (isOpen()) ::close(std::exchange(m_number, -1));
    }

private:
    int m_number = -1;
};

}  // namespace veltra
