// SPDX-License-Identifier: MIT
// Runs a scenario once for each of its allocations, with that one failing, each time in a child of
// its own: in a process that has used nothing yet and in one that has, with one failure and with
// all from there on.
#pragma once

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/allocation_zone.h"

#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

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
    Scenario(const char* title, Promise kept, Answer (*body)())
        : name(title), promise(kept), run(body) {
        all.push_back(this);
    }
    const char* const name;
    const Promise promise;
    Answer (*const run)();  // may be run several times in one process
    static inline std::vector<const Scenario*> all;
};

// Freed blocks are kept, filled with a pattern, so that writing to one afterwards shows.
class Quarantine {
public:
    // False when it is full.
    bool keep(void* block, std::size_t size) noexcept {
        if (m_count == m_blocks.size()) return false;
        std::memset(block, kFreed, size);
        m_blocks[m_count++] = {static_cast<unsigned char*>(block), size};
        return true;
    }
    bool isUntouched() const noexcept {
        return std::all_of(m_blocks.data(), m_blocks.data() + m_count, [](const auto& one) {
            return std::all_of(one.data(), one.data() + one.size(),
                               [](unsigned char byte) { return byte == kFreed; });
        });
    }

private:
    static constexpr unsigned char kFreed = 0xDD;
    std::array<std::span<unsigned char>, 32768> m_blocks{};
    std::size_t m_count = 0;
};

struct Plan {
    bool isWarm;        // the process has run the scenario before
    bool isFromThenOn;  // else once
    long failAt;        // counted from 1; 0: never
};

// One thread: that of the child.
struct Injector {
    ZoneEntries below;
    Quarantine quarantine;
    Plan plan{};
    bool isOn = false;
    bool isPaused = false;
    bool hasFailed = false;
    long requests = 0;
    long live = 0;

    bool refuses() noexcept {
        if (!isOn || isPaused) return false;
        ++requests;
        if (plan.isFromThenOn ? requests < plan.failAt : requests != plan.failAt) return false;
        if (plan.failAt == 0) return false;
        hasFailed = true;
        errno = ENOMEM;
        return true;
    }
    void* counted(void* block) noexcept {
        if (block != nullptr) ++live;
        return block;
    }
};

inline constinit Injector injector;

// While one lives no allocation fails or is counted: for what a scenario prepares and looks at.
class Unfailing {
public:
    Unfailing() noexcept : m_before(std::exchange(injector.isPaused, true)) {}
    Unfailing(const Unfailing&) = delete;
    Unfailing& operator=(const Unfailing&) = delete;
    ~Unfailing() { injector.isPaused = m_before; }

private:
    const bool m_before;
};

template <auto kEntry, typename... Arguments>
void* refusing(Arguments... arguments) noexcept {
    return injector.refuses() ? nullptr : injector.counted((injector.below.*kEntry)(arguments...));
}

inline void wrapZone() noexcept {
    AllocationZone& zone = AllocationZone::process();
    injector.below = zone.entries();
    zone.allocate = refusing<&ZoneEntries::allocate, std::size_t>;
    zone.allocateZeroed = refusing<&ZoneEntries::allocateZeroed, std::size_t, std::size_t>;
    zone.allocateAligned = refusing<&ZoneEntries::allocateAligned, std::size_t, std::size_t>;
    zone.reallocate = [](void* block, std::size_t size) noexcept -> void* {
        if (injector.refuses()) return nullptr;
        void* moved = injector.below.reallocate(block, size);
        return block == nullptr ? injector.counted(moved) : moved;
    };
    zone.free = [](void* block) noexcept {
        if (block == nullptr) return;
        --injector.live;
        if (!injector.quarantine.keep(block, injector.below.size(block)))
            injector.below.free(block);
    };
}

// What a child leaves behind.
struct Outcome {
    Answer underFailure, afterwards;
    bool hasFailed, isFinished, isQuarantineUntouched;
    long requests, live;
};

inline Answer answerOf(const Scenario& scenario) noexcept {
    try {
        return scenario.run();
    } catch (const std::bad_alloc&) {
        return scenario.promise == Promise::MayThrow ? Answer::Neutral : Answer::Wrong;
    } catch (...) {
        return Answer::Wrong;
    }
}

[[noreturn]] inline void runChild(const Scenario& scenario, const Plan& plan,
                                  Outcome& outcome) noexcept {
    constexpr unsigned kSeconds = 20;
    ::alarm(kSeconds);
    ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    wrapZone();
    // The C library's table of exit handlers grows by 32: here, not within the scenario, whose
    // static objects it takes but once.
    for (int i = 0; i < 32 && injector.live == 0; ++i)
        std::atexit([] {});
    if (plan.isWarm) answerOf(scenario);
    injector.plan = plan;
    injector.isOn = true;
    outcome.underFailure = answerOf(scenario);
    injector.isOn = false;
    outcome.afterwards = answerOf(scenario);
    outcome.hasFailed = injector.hasFailed;
    outcome.requests = injector.requests;
    outcome.live = injector.live;
    outcome.isQuarantineUntouched = injector.quarantine.isUntouched();
    outcome.isFinished = true;
    ::_exit(0);
}

inline Outcome outcomeOf(const Scenario& scenario, const Plan& plan) {
    static auto* const shared = static_cast<Outcome*>(::mmap(
        nullptr, sizeof(Outcome), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *shared = {};
    const pid_t child = ::fork();
    if (child == 0) runChild(scenario, plan, *shared);
    ::waitpid(child, nullptr, 0);
    return *shared;
}

// A line for each kind of fault, with the allocations concerned; empty: none. After each failing
// run the scenario runs once more, without failures, and must then be right; and as many blocks
// must be left as after runs without failures, and no freed one have been written to.
inline std::string faultsUnderEveryFailure(const Scenario& scenario) {
    std::map<std::string, std::string> faults;
    long loops = 0;
    for (const bool isWarm : {false, true}) {
        const Outcome sound = outcomeOf(scenario, {isWarm, false, 0});
        if (sound.underFailure != Answer::Right || sound.afterwards != Answer::Right)
            faults["not right without failures"] += " 0";
        if (scenario.promise == Promise::AllocatesNothing && sound.requests != 0)
            faults["allocates"] += " " + std::to_string(sound.requests);
        for (const bool isFromThenOn : {false, true}) {
            const std::string place = std::string(isWarm ? ", used before" : ", first use") +
                                      (isFromThenOn ? ", from then on" : ", once");
            for (long failAt = 1;; ++failAt, ++loops) {
                const Outcome outcome = outcomeOf(scenario, {isWarm, isFromThenOn, failAt});
                const auto note = [&](bool isFault, const char* fault) {
                    if (isFault) faults[fault + place] += " " + std::to_string(failAt);
                };
                note(outcome.underFailure == Answer::Wrong, "wrong answer");
                note(!outcome.isFinished, "crash");
                if (!outcome.isFinished && failAt <= 2 * sound.requests) continue;
                if (!outcome.isFinished) break;
                note(outcome.afterwards != Answer::Right, "not right afterwards");
                note(outcome.live > sound.live, "leak");
                note(outcome.live < sound.live, "freed twice");
                note(!outcome.isQuarantineUntouched, "freed and used");
                if (!outcome.hasFailed) break;
            }
        }
    }
    std::printf("%-40s %6ld loops\n", scenario.name, loops);
    std::string all;
    for (const auto& [fault, places] : faults)
        all.append("  ").append(scenario.name).append(": ").append(fault + ", at" + places + "\n");
    return all;
}

}  // namespace veltra::testing
