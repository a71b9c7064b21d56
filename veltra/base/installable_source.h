// SPDX-License-Identifier: MIT
// The bodies of Installable, for the one source of each interface. It says what serves while
// nothing is installed, and makes the functions:
//
//   template <>
//   struct OwnImplementation<const Clocks> : OwnFrom<platformClocks> {};
//   template class Installable<const Clocks>;
#pragma once

#include "veltra/base/installable.h"

#include <atomic>

namespace veltra {

template <class Interface>
struct OwnImplementation;

// `function` makes or finds the implementation, and returns the same one each time.
template <auto function>
struct OwnFrom {
    static decltype(auto) get() noexcept { return function(); }
};

// One for each interface, as only one source makes its functions.
template <class Interface>
static constinit std::atomic<Interface*> installedImplementation{nullptr};

template <class Interface>
Interface& Installable<Interface>::current() noexcept {
    Interface* const installed =
        installedImplementation<Interface>.load(std::memory_order_acquire);  // with install()
    return installed != nullptr ? *installed : OwnImplementation<Interface>::get();
}

template <class Interface>
Interface* Installable<Interface>::install(Interface* implementation) noexcept {
    return installedImplementation<Interface>.exchange(
        implementation,
        std::memory_order_acq_rel);  // with current()
}

}  // namespace veltra
