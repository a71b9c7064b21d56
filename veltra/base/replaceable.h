// SPDX-License-Identifier: MIT
// What stands behind current() and install() of every interface that a host can replace.
#pragma once

#include <atomic>

namespace veltra {

// `platform` makes or finds the platform's own implementation; it is in force while none is
// installed.
template <typename Interface, Interface& (*platform)() noexcept>
class Replaceable {
public:
    Interface& current() const noexcept {
        Interface* installed = m_installed.load(std::memory_order_acquire);  // with install()
        return installed != nullptr ? *installed : platform();
    }

    // Null stands for the platform's own, as argument and as answer.
    Interface* install(Interface* next) noexcept {
        return m_installed.exchange(next, std::memory_order_acq_rel);  // with current()
    }

private:
    std::atomic<Interface*> m_installed{nullptr};
};

}  // namespace veltra
