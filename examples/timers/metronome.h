// SPDX-License-Identifier: MIT
// What the hosts in this folder run: four beats, then a word to the host.
#pragma once

#include "veltra/base/action.h"
#include "veltra/infrastructure/timer.h"

#include <cstdio>
#include <functional>
#include <utility>

class Metronome : public veltra::Anchored {
public:
    explicit Metronome(std::function<void()> whenDone) : m_whenDone(std::move(whenDone)) {
        m_timer.start();  // on the run loop of this thread
    }

    bool isDone() const { return m_beats == kBeats; }

private:
    void tick(veltra::QkTimer& timer) {
        std::printf("beat %d\n", ++m_beats);
        if (!isDone()) return;
        timer.stop();
        m_whenDone();
    }

    static constexpr int kBeats = 4;

    const std::function<void()> m_whenDone;
    int m_beats = 0;
    veltra::QkTimer m_timer{0.02, this, veltra::action<&Metronome::tick>(), nullptr};
};
