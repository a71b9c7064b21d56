// SPDX-License-Identifier: MIT
#include "reader_thread.h"

#include <algorithm>
#include <chrono>

namespace veltra::console {

namespace {
constexpr std::chrono::milliseconds kPause{10};
}  // namespace

void ReaderThread::start() {
    if (m_thread.joinable()) return;
    m_stopping = false;
    m_thread = std::thread([this] { run(); });
}

void ReaderThread::stop() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void ReaderThread::add(Strip* strip) {
    {
        const std::lock_guard lock(m_mutex);
        m_strips.push_back(strip);
    }
    m_wake.notify_one();
}

void ReaderThread::remove(Strip* strip) {
    const std::lock_guard lock(m_mutex);
    m_strips.erase(std::remove(m_strips.begin(), m_strips.end(), strip), m_strips.end());
}

void ReaderThread::run() {
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        // One chunk for each strip in turn, so that none starves while another catches up.
        bool busy = false;
        for (std::size_t i = 0; i < m_strips.size(); ++i)
            busy = m_strips[i]->feed() || busy;
        if (!busy) {
            m_wake.wait_for(lock, kPause);
        } else {
            lock.unlock();  // a chance for add() and remove()
            std::this_thread::yield();
            lock.lock();
        }
    }
}

}  // namespace veltra::console
