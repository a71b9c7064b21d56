// SPDX-License-Identifier: MIT
#include "reader_pool.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace veltra::console {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPause{10};
constexpr std::chrono::milliseconds kPatience{30};  // for one chunk; a ring holds twenty times that
constexpr std::chrono::milliseconds kFarewell{500};

}  // namespace

struct ReaderPool::Shared {
    struct Place {
        Strip* strip;
        bool isBeingRead = false;
        bool isUnwanted = false;
        bool isContent = false;  // there was nothing to do when it was looked at last
        Clock::time_point since;
    };

    mutable std::mutex mutex;  // guards all that follows; the strips are the readers' own
    std::vector<Place> places;
    std::size_t next = 0;     // whose turn it is
    std::size_t threads = 0;  // that have not ended
    std::size_t waiting = 0;
    bool stopping = false;
    std::condition_variable wake;
    std::condition_variable done;  // with a chunk of an unwanted strip, or a thread

    void erase(const Place* place) { places.erase(places.begin() + (place - places.data())); }

    Place* find(const Strip* strip) {
        const auto found = std::find_if(places.begin(), places.end(), [strip](const Place& place) {
            return place.strip == strip;
        });
        return found != places.end() ? &*found : nullptr;
    }

    // Somebody reads, and not for long.
    bool isServed(Clock::time_point now) const {
        return std::any_of(places.begin(), places.end(), [now](const Place& place) {
            return place.isBeingRead && now - place.since < kPatience;
        });
    }

    // The next strip that nobody reads and that may want something; null when there is none.
    Place* takeTurn() {
        for (std::size_t i = 0; i < places.size(); ++i) {
            Place& place = places[next++ % places.size()];
            if (!place.isBeingRead && !place.isContent) return &place;
        }
        return nullptr;
    }
};

namespace {

using Lock = std::unique_lock<std::mutex>;

}  // namespace

void ReaderPool::start() {
    if (m_shared) return;
    m_shared = std::make_shared<Shared>();
    m_shared->threads = 1;
    struct Reader {
        std::shared_ptr<Shared> shared;

        void pause(Lock& lock) const {
            ++shared->waiting;
            shared->wake.wait_for(lock, kPause);
            --shared->waiting;
            for (Shared::Place& place : shared->places)
                place.isContent = false;
        }

        // One chunk of one strip.
        void read(Lock& lock, Shared::Place& place) const {
            Strip* const strip = place.strip;
            place.isBeingRead = true;
            place.since = Clock::now();
            if (shared->waiting == 0 && shared->threads <= shared->places.size()) {
                std::thread(*this).detach();
                ++shared->threads;
            }
            lock.unlock();
            const bool didSomething = strip->feed();
            lock.lock();
            Shared::Place* const back = shared->find(strip);
            back->isBeingRead = false;
            back->isContent = !didSomething;
            if (!back->isUnwanted) return;
            shared->erase(back);
            shared->done.notify_all();
        }

        void operator()() const {
            Lock lock(shared->mutex);
            while (!shared->stopping) {
                Shared::Place* const place =
                    shared->isServed(Clock::now()) ? nullptr : shared->takeTurn();
                if (place != nullptr) {
                    read(lock, *place);
                } else {
                    pause(lock);
                }
            }
            --shared->threads;
            shared->done.notify_all();
        }
    };
    std::thread(Reader{m_shared}).detach();
}

void ReaderPool::stop() {
    if (!m_shared) return;
    Lock lock(m_shared->mutex);
    m_shared->stopping = true;
    m_shared->wake.notify_all();
    m_shared->done.wait_for(lock, kFarewell, [this] { return m_shared->threads == 0; });
}

void ReaderPool::add(Strip* strip) {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->places.push_back({strip, false, false, false, {}});
    m_shared->wake.notify_one();
}

void ReaderPool::wake() {
    if (!m_shared) return;
    const std::lock_guard lock(m_shared->mutex);
    m_shared->wake.notify_all();
}

void ReaderPool::remove(Strip* strip) {
    if (!m_shared) return;
    const std::lock_guard lock(m_shared->mutex);
    Shared::Place* const place = m_shared->find(strip);
    if (place == nullptr) return;
    place->isUnwanted = true;
    if (!place->isBeingRead) m_shared->erase(place);
}

bool ReaderPool::holds(const Strip* strip) const {
    if (!m_shared) return false;
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->find(strip) != nullptr;
}

bool ReaderPool::waitFor(const Strip* strip) const {
    if (!m_shared) return true;
    Lock lock(m_shared->mutex);
    return m_shared->done.wait_for(lock, kFarewell,
                                   [&] { return m_shared->find(strip) == nullptr; });
}

}  // namespace veltra::console
