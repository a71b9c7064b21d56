// SPDX-License-Identifier: MIT
// Timers in a host on SDL, which watches no descriptors but waits for events with a time limit.
#include "examples/timers/metronome.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/run_loop.h"

#include <algorithm>
#include <cstdint>

#include <SDL.h>

int main(int /*argc*/, char** /*argv*/) {
    veltra::RunLoop loop;  // needs nothing of the system
    veltra::RunLoop::setCurrent(&loop);
    bool isRunning = SDL_Init(SDL_INIT_EVENTS) == 0;
    Metronome metronome([&isRunning] { isRunning = false; });

    while (isRunning) {
        const veltra::Moment now = veltra::Clocks::current().monotonic().moment();
        const veltra::Moment next = loop.nextDeadline().value_or(now + veltra::milliseconds(500));
        const auto wait = std::clamp<std::int64_t>((next - now).wholeMilliseconds(), 0, 500);
        SDL_Event event;
        if (SDL_WaitEventTimeout(&event, static_cast<int>(wait)) != 0)
            isRunning = isRunning && event.type != SDL_QUIT;
        loop.runDue();
    }
    SDL_Quit();
    return metronome.isDone() ? 0 : 1;
}
