// SPDX-License-Identifier: MIT
// What all interfaces have that a host can replace. Each has one implementation of the framework's
// own, which serves until a host installs another:
//
//   class StudioClocks final : public veltra::Clocks { ... };
//   static StudioClocks clocks;
//   veltra::Clocks::install(&clocks);           // at start
//
// An implementation that adds to another one asks current() before it is installed, and passes its
// calls on to what that returned.
#pragma once

#include "veltra/export.h"

namespace veltra {

// The base of each such interface. `Interface` is const where its functions are.
template <class Interface>
class Installable {
public:
    Installable(const Installable&) = delete;
    Installable& operator=(const Installable&) = delete;

    // The implementation in force: the installed one, else the framework's own, which serves until
    // the process ends, exit handlers included.
    // Thread: any. Realtime-safe: yes.
    static Interface& current() noexcept;

    // Puts `implementation` in force; null goes back to the framework's own. Returns what was
    // installed before, null for the framework's own. The implementation is not owned: it must stay
    // alive until another one has taken its place and the calls that reached it have returned.
    // Thread: any. Realtime-safe: yes.
    static Interface* install(Interface* implementation) noexcept;

protected:
    constexpr Installable() noexcept = default;
    ~Installable() = default;
};

}  // namespace veltra
