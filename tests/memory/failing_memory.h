// SPDX-License-Identifier: MIT
// Runs a scenario once for each of its allocations, with that one failing, each time in a child of
// its own: in a process that has used nothing yet and in one that has, with one failure and with
// all from there on.
#pragma once

#include <string>

namespace veltra::testing {

enum class Answer {
    Right,
    Neutral,  // what is documented for want of memory
    Wrong,
};

constexpr Answer oneOf(bool isRight, bool isNeutral) noexcept {
    return isRight ? Answer::Right : isNeutral ? Answer::Neutral : Answer::Wrong;
}

enum class Promise {
    AllocatesNothing,
    NeverThrows,
    MayThrow,  // std::bad_alloc; counts as Neutral
};

struct Scenario {
    const char* name;
    Promise promise;
    Answer (*run)();  // may be run several times in one process
};

// While one lives no allocation fails or is counted: for what a scenario prepares and looks at.
class Unfailing {
public:
    Unfailing() noexcept;
    Unfailing(const Unfailing&) = delete;
    Unfailing& operator=(const Unfailing&) = delete;
    ~Unfailing();

private:
    const bool m_before;
};

struct Findings {
    long allocations = 0;  // of one run in a process that has used nothing yet
    long loops = 0;
    std::string faults;  // a line for each kind, with the allocations concerned; empty: none
};

// After each failing run the scenario runs once more, without failures, and must then be right; and
// as many blocks must be left as after runs without failures, and no freed one have been
// written to.
Findings tryEveryFailure(const Scenario& scenario);

}  // namespace veltra::testing
