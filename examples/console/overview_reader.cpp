// SPDX-License-Identifier: MIT
#include "overview_reader.h"

namespace veltra::console {

OverviewReader::~OverviewReader() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_stopping.store(true, std::memory_order_relaxed);  // the mutex orders it for run()
    }
    m_wake.notify_one();
    m_thread.join();
}

void OverviewReader::request(const std::string& path) {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_overviews.try_emplace(path).second) return;
        m_waiting.push_back(path);
    }
    if (!m_thread.joinable()) m_thread = std::thread([this] { run(); });
    m_wake.notify_one();
}

std::shared_ptr<const Overview> OverviewReader::find(const std::string& path) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_overviews.find(path);
    return found != m_overviews.end() ? found->second : nullptr;
}

void OverviewReader::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || !m_waiting.empty(); });
        if (m_stopping) return;
        const std::string path = m_waiting.front();
        m_waiting.pop_front();
        lock.unlock();
        std::string problem;  // told by who plays the file
        std::shared_ptr<const Overview> overview;
        if (const auto file = AudioFile::open(path, problem)) {
            overview = readOverview(*file, m_stopping, [&](auto soFar) {
                const std::lock_guard guard(m_mutex);
                m_overviews[path] = std::move(soFar);
            });
        }
        lock.lock();
        if (overview) {
            m_overviews[path] = std::move(overview);
        } else {
            m_overviews.erase(path);
        }
    }
}

}  // namespace veltra::console
