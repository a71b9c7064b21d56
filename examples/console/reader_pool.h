// SPDX-License-Identifier: MIT
// The threads that keep the strips' rings full, so that the audio thread never sees a disk.
//
// One of them reads, a chunk for each strip in turn, and one waits beside it. When a chunk takes
// long, as from a network that hangs, the one that waits goes on with the other strips, and another
// comes to wait in its place. So one slow file delays nobody, and there are never more threads than
// strips, and one. The lock is not held while a chunk is read. The audio thread neither takes it
// nor wakes anybody: the readers look at the rings every few milliseconds by themselves, and a ring
// holds far more than that.
#pragma once

#include "strip.h"

#include <memory>

namespace veltra::console {

// Thread: main. Realtime-safe: no, but nothing waits for a file, except stop() for half a second.
class ReaderPool {
public:
    ReaderPool() = default;
    ReaderPool(const ReaderPool&) = delete;
    ReaderPool& operator=(const ReaderPool&) = delete;
    ~ReaderPool() { stop(); }

    void start();
    // A thread that does not come back from its file stays behind; see holds().
    void stop();

    // `strip` is not owned.
    void add(Strip* strip);
    // The strips want something new.
    void wake();
    // No chunk of it is begun any more.
    void remove(Strip* strip);
    // Whether a chunk of a removed strip is still being read, so that it cannot be destroyed.
    bool holds(const Strip* strip) const;
    // Waits until none is, at most half a second. Returns whether none is.
    bool waitFor(const Strip* strip) const;

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared;  // with the threads
};

}  // namespace veltra::console
