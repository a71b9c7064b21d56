// SPDX-License-Identifier: MIT
// A repeating timer, a stopwatch, and an object that stops the loop: QkTimer on a run loop that
// needs no toolkit. The other programs here have an event loop of their own.
#include "examples/timers/metronome.h"
#include "veltra/infrastructure/nano_timer.h"
#include "veltra/platform/poll_run_loop.h"

#include <cstdio>

int main() {
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);
    Metronome metronome([&loop] { loop.stop(); });

    const auto stopwatch = veltra::QKNanoTimer::timer();
    if (stopwatch == nullptr) return 1;
    stopwatch->start();
    loop.run();
    stopwatch->stop();
    std::printf("four beats took %s\n", stopwatch->description().c_str());
    return metronome.isDone() ? 0 : 1;
}
