// SPDX-License-Identifier: MIT
// What the keyboard plays in the mix: sixteen notes at a time, each from the very frame on that it
// is meant for.
//
// How it works. The main thread writes what is played into a ring of events, each with the frame at
// which it happens; the audio thread takes them out in that order. Both count events from the
// beginning: m_written is changed by the main thread only, m_taken by the audio thread only, and
//     m_taken <= m_written <= m_taken + kEvents.
// An event is published (release) after it was written and read by the other side (acquire) before
// it is looked at, and the same with the place that becomes free. Where the ring is full, because
// nobody renders, what does not fit is lost: m_isLost then makes the audio thread drop what waits
// and let all notes go, so that none is left hanging. Each event carries the pedal.
//
// A sound is lent to the audio thread: Loan::users counts who holds it, at first the main thread's
// offer in m_offer. Taking the offer over hands that one count on; a voice adds itself only while
// the count cannot be 0, because the present sound holds one. Each takes itself off (release) after
// it has touched the sound for the last time, and collect() frees what nobody holds (acquire).
#pragma once

#include "key_voice.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace veltra::console {

class Instrument {
public:
    static constexpr std::size_t kVoices = 16;

    explicit Instrument(double rate) noexcept : m_rate(rate) {}
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    // What happens at a frame, counted as frames() does. One that is gone by then means at once,
    // and nothing happens before what was asked for earlier. A note that is pressed again begins
    // anew; beyond sixteen the one that was released or pressed first makes room. What is no note
    // is passed over; `velocity` is kept within 1 and 127. Thread: main.
    void press(std::uint64_t frame, int note, int velocity) noexcept;
    void release(std::uint64_t frame, int note) noexcept;
    void setSustained(std::uint64_t frame, bool isSustained) noexcept;
    void releaseAll(std::uint64_t frame) noexcept;
    // All notes are gone in 5 ms.
    void silence() noexcept;

    // What later notes sound like; null: a tone. Notes that sound go on as they are. Thread: main.
    void setSound(std::shared_ptr<const KeySound> sound);
    // Frees sounds that are not played any more. Call it every now and then. Thread: main.
    void collect() noexcept;
    // Sounds that are held, to see that they go.
    std::size_t soundCount() const noexcept { return m_loans.size(); }

    // All that have been rendered. Thread: any.
    std::uint64_t frames() const noexcept {
        return m_rendered.load(std::memory_order_relaxed);  // a number, from render()
    }

    // Adds the next frames to at most two outputs; leaves them alone while nothing sounds.
    // Thread: audio. Realtime-safe: yes.
    void render(float* const* outputs, std::uint32_t outputCount, std::uint32_t frames) noexcept;

private:
    static constexpr std::size_t kEvents = 256;          // a power of two
    static constexpr std::size_t kPlaces = 2 * kVoices;  // with those that make room

    enum class Kind : std::uint8_t { Press, Release, Pedal, ReleaseAll, Silence };
    struct Event {
        std::uint64_t frame = 0;
        Kind kind = Kind::Pedal;
        bool isSustained = false;
        std::uint8_t note = 0;
        std::uint8_t velocity = 0;
    };
    struct Loan {
        std::shared_ptr<const KeySound> sound;  // null: the tone
        std::atomic<std::uint32_t> users{1};
    };
    struct Place {
        KeyVoice voice;
        Loan* loan = nullptr;     // while the voice is not free
        std::uint64_t order = 0;  // of the events that brought it where it is
    };

    void tell(std::uint64_t frame, Kind kind, int note = 0, int velocity = 0) noexcept;
    void takeOffer() noexcept;
    void dropEvents() noexcept;
    void obey(const Event& event) noexcept;
    void begin(const Event& event) noexcept;
    void letGo(Place& place) noexcept;
    void setPedal(bool isDown) noexcept;
    Place* placeToFree() noexcept;
    void renderVoices(float* const* outputs, std::uint32_t outputCount, std::uint32_t done,
                      std::uint32_t frames) noexcept;

    const double m_rate;

    // Main thread only.
    std::uint64_t m_lastFrame = 0;  // that was told
    bool m_isSustained = false;
    std::vector<std::unique_ptr<Loan>> m_loans;

    // Audio thread only.
    std::array<Place, kPlaces> m_places;
    Loan m_toneLoan;  // its count: main thread, too
    Loan* m_present = &m_toneLoan;
    std::uint64_t m_frame = 0;
    std::uint64_t m_order = 0;
    bool m_isPedalDown = false;

    std::array<Event, kEvents> m_events;
    std::atomic<std::uint32_t> m_written{0};   // main thread changes, audio thread reads
    std::atomic<bool> m_isLost{false};         // main thread sets, audio thread clears
    std::atomic<Loan*> m_offer{nullptr};       // main thread gives, audio thread takes
    std::atomic<std::uint32_t> m_taken{0};     // audio thread changes, main thread reads
    std::atomic<std::uint64_t> m_rendered{0};  // audio thread changes, any thread reads
};

}  // namespace veltra::console
