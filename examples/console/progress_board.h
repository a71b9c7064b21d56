// SPDX-License-Identifier: MIT
// The host's side of the progress service: what is being read at this moment, and how far it is.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace veltra::console {

struct ProgressLine {
    std::string title;
    double value = -1.0;       // 0 to 1; below 0: nobody knows
    std::uint64_t number = 0;  // that no other line has had
};

// Provides the service from its construction to its destruction. One at a time.
class ProgressBoard {
public:
    // Called on the thread that reads, under the board's lock, after a line has come, when its
    // value has changed, and with `isOver` just before it goes. May be empty; must not throw.
    using Listener = std::function<void(const std::vector<ProgressLine>& lines, std::size_t changed,
                                        bool isOver)>;

    // Thread: main, also for the destruction.
    explicit ProgressBoard(Listener listener = {});
    ProgressBoard(const ProgressBoard&) = delete;
    ProgressBoard& operator=(const ProgressBoard&) = delete;
    ~ProgressBoard();

    // In the order in which they came. Thread: any, but not the listener.
    std::vector<ProgressLine> lines() const;

    // Asks everybody who has a line to stop. Thread: any, but not the listener.
    void cancelAll() noexcept;
};

}  // namespace veltra::console
