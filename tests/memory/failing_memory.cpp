// SPDX-License-Identifier: MIT
#include "tests/memory/failing_memory.h"

#include "veltra/platform/allocation_zone.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <new>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra::testing {

namespace {

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
        return std::all_of(m_blocks.data(), m_blocks.data() + m_count, [](const Kept& one) {
            return std::all_of(one.block, one.block + one.size,
                               [](unsigned char byte) { return byte == kFreed; });
        });
    }

private:
    static constexpr unsigned char kFreed = 0xDD;
    struct Kept {
        unsigned char* block;
        std::size_t size;
    };
    std::array<Kept, 32768> m_blocks{};
    std::size_t m_count = 0;
};

constinit Quarantine quarantine;

struct Plan {
    bool isWarm;        // the process has run the scenario before
    bool isFromThenOn;  // else once
    long failAt;        // counted from 1; 0: never
};

// One thread: that of the child.
struct Injector {
    ZoneEntries below;
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

constinit Injector injector;

template <auto kEntry, typename... Arguments>
void* refusing(Arguments... arguments) noexcept {
    return injector.refuses() ? nullptr : injector.counted((injector.below.*kEntry)(arguments...));
}

void wrapZone() noexcept {
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
        if (!quarantine.keep(block, injector.below.size(block))) injector.below.free(block);
    };
}

// What a child leaves behind.
struct Outcome {
    Answer underFailure;
    Answer afterwards;
    bool hasFailed;
    bool isFinished;
    bool isQuarantineUntouched;
    long requests;
    long live;
};

Answer answerOf(const Scenario& scenario) noexcept {
    try {
        return scenario.run();
    } catch (const std::bad_alloc&) {
        return scenario.promise == Promise::MayThrow ? Answer::Neutral : Answer::Wrong;
    } catch (...) {
        return Answer::Wrong;
    }
}

[[noreturn]] void runChild(const Scenario& scenario, const Plan& plan, Outcome& outcome) noexcept {
    constexpr unsigned kSeconds = 20;
    ::alarm(kSeconds);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDERR_FILENO);
    wrapZone();
    if (plan.isWarm) answerOf(scenario);
    injector.plan = plan;
    injector.isOn = true;
    outcome.underFailure = answerOf(scenario);
    injector.isOn = false;
    outcome.afterwards = answerOf(scenario);
    outcome.hasFailed = injector.hasFailed;
    outcome.requests = injector.requests;
    outcome.live = injector.live;
    outcome.isQuarantineUntouched = quarantine.isUntouched();
    outcome.isFinished = true;
    ::_exit(0);
}

Outcome outcomeOf(const Scenario& scenario, const Plan& plan) {
    static auto* const shared = static_cast<Outcome*>(::mmap(
        nullptr, sizeof(Outcome), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *shared = {};
    const pid_t child = ::fork();
    if (child == 0) runChild(scenario, plan, *shared);
    ::waitpid(child, nullptr, 0);
    return *shared;
}

}  // namespace

Unfailing::Unfailing() noexcept : m_before(injector.isPaused) {
    injector.isPaused = true;
}

Unfailing::~Unfailing() {
    injector.isPaused = m_before;
}

Findings tryEveryFailure(const Scenario& scenario) {
    Findings findings;
    std::map<std::string, std::vector<long>> faults;
    for (const bool isWarm : {false, true}) {
        const Outcome sound = outcomeOf(scenario, {isWarm, false, 0});
        if (!isWarm) findings.allocations = sound.requests;
        if (sound.underFailure != Answer::Right || sound.afterwards != Answer::Right)
            faults["not right without failures"].push_back(0);
        if (scenario.promise == Promise::AllocatesNothing && sound.requests != 0)
            faults["allocates"].push_back(sound.requests);
        for (const bool isFromThenOn : {false, true}) {
            const std::string place = std::string(isWarm ? ", used before" : ", first use") +
                                      (isFromThenOn ? ", from then on" : ", once");
            for (long failAt = 1;; ++failAt) {
                const Outcome outcome = outcomeOf(scenario, {isWarm, isFromThenOn, failAt});
                ++findings.loops;
                const auto note = [&](const char* fault) {
                    faults[fault + place].push_back(failAt);
                };
                if (outcome.underFailure == Answer::Wrong) note("wrong answer");
                if (!outcome.isFinished) {
                    note("crash");
                    if (failAt > 2 * sound.requests) break;
                    continue;
                }
                if (outcome.afterwards != Answer::Right) note("not right afterwards");
                if (outcome.live > sound.live) note("leak");
                if (outcome.live < sound.live) note("freed twice");
                if (!outcome.isQuarantineUntouched) note("freed and used");
                if (!outcome.hasFailed) break;
            }
        }
    }
    for (const auto& [fault, places] : faults) {
        findings.faults += std::string("  ") + scenario.name + ": " + fault + ", at";
        for (const long place : places)
            findings.faults += " " + std::to_string(place);
        findings.faults += "\n";
    }
    return findings;
}

}  // namespace veltra::testing
