// SPDX-License-Identifier: MIT
// The thread that keeps the strips' rings full, so that the audio thread never sees the disk.
#pragma once

#include "strip.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace veltra::console {

// Thread: main. Realtime-safe: no. The lock is between the main and the reading thread; the audio
// thread neither takes it nor wakes anybody: the reader looks at the rings every few milliseconds
// by itself, and a ring holds far more than that.
class ReaderThread {
public:
    ReaderThread() = default;
    ReaderThread(const ReaderThread&) = delete;
    ReaderThread& operator=(const ReaderThread&) = delete;
    ~ReaderThread() { stop(); }

    void start();
    void stop();

    // `strip` is not owned; after remove() has returned, the thread does not touch it any more.
    void add(Strip* strip);
    void remove(Strip* strip);

private:
    void run();

    std::mutex m_mutex;  // guards the two below, and is held while a chunk is read
    std::vector<Strip*> m_strips;
    bool m_stopping = false;
    std::condition_variable m_wake;
    std::thread m_thread;
};

}  // namespace veltra::console
