// SPDX-License-Identifier: MIT
// Makes overviews of files in a thread of its own, so that nobody waits for a long one.
#pragma once

#include "overview.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace veltra::console {

// Thread: main.
class OverviewReader {
public:
    OverviewReader() = default;
    OverviewReader(const OverviewReader&) = delete;
    OverviewReader& operator=(const OverviewReader&) = delete;
    ~OverviewReader();  // ends early, within a chunk

    // Files that have been asked for before are not read again, unless that was stopped by who
    // shows the progress, or failed.
    void request(const std::string& path);

    // What is known of the file so far; null before that, and when it cannot be read.
    std::shared_ptr<const Overview> find(const std::string& path) const;

private:
    void run();

    std::thread m_thread;
    std::atomic<bool> m_stopping{false};
    mutable std::mutex m_mutex;  // guards what follows
    std::condition_variable m_wake;
    std::deque<std::string> m_waiting;
    std::map<std::string, std::shared_ptr<const Overview>> m_overviews;  // null: only asked for
};

}  // namespace veltra::console
