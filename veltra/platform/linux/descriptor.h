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
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
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
