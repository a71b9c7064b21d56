// SPDX-License-Identifier: MIT
// A repeating timer, a stopwatch, and an object that stops the loop: QkTimer on a run loop that
// needs no toolkit. A host with its own event loop watches RunLoop::descriptor() instead.
#include "veltra/base/action.h"
#include "veltra/infrastructure/nano_timer.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/platform/poll_run_loop.h"

#include <cstdio>

namespace {

class Metronome : public veltra::Anchored {
public:
    explicit Metronome(veltra::PollRunLoop& loop) : m_loop(loop) {}

    void tick(veltra::QkTimer& timer) {
        std::printf("beat %d\n", ++m_beats);
        if (m_beats < kBeats) return;
        timer.stop();
        m_loop.stop();
    }

    bool isDone() const { return m_beats == kBeats; }

private:
    static constexpr int kBeats = 4;

    veltra::PollRunLoop& m_loop;
    int m_beats = 0;
};

}  // namespace

int main() {
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);

    Metronome metronome(loop);
    veltra::QkTimer timer(0.02, &metronome, veltra::action<&Metronome::tick>(), nullptr);
    timer.start();

    const auto stopwatch = veltra::QKNanoTimer::timer();
    if (stopwatch == nullptr) return 1;
    stopwatch->start();
    loop.run();
    stopwatch->stop();
    std::printf("four beats took %s\n", stopwatch->description().c_str());
    return metronome.isDone() ? 0 : 1;
}
