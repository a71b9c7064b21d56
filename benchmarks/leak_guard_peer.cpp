// SPDX-License-Identifier: MIT
// The leak guard beside tools that take a whole process: makes pairs of malloc and free above a
// stack of as many frames as the first argument says, and prints the nanoseconds of one pair. Built
// with GUARDED in a scope of the guard, else for the tools.
#include <chrono>
#include <cstdio>
#include <cstdlib>

#ifdef GUARDED
#include "benchmarks/leak_guard_on.h"
#include "veltra/memory/leak_guard.h"
#endif

namespace {

constexpr int kPairs = 2000;

void* volatile block = nullptr;  // what the compiler may not leave out

double nanosecondsAbove(int frames);
double (*volatile frame)(int frames) = nanosecondsAbove;  // keeps a frame a frame

double nanosecondsAbove(int frames) {
    using Clock = std::chrono::steady_clock;
    if (frames > 1) {
        const volatile double answer = frame(frames - 1);
        return answer;
    }
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < kPairs; ++i) {
        block = std::malloc(64);
        std::free(block);
    }
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / kPairs;
}

}  // namespace

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : 1;
#ifdef GUARDED
    GuardOn preferences;
    veltra::Preferences::install(&preferences);
    const veltra::QKLeakGuard guard;
#endif
    nanosecondsAbove(frames);  // what is done once is done
    std::printf("%g\n", nanosecondsAbove(frames));
    return 0;
}
