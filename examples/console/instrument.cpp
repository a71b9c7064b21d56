// SPDX-License-Identifier: MIT
#include "instrument.h"

#include <algorithm>
#include <utility>

namespace veltra::console {

// The main thread.

void Instrument::tell(std::uint64_t frame, Kind kind, int note, int velocity) noexcept {
    if (note < 0 || note >= kNotes) return;
    m_lastFrame = std::max(frame, m_lastFrame);
    const std::uint32_t written = m_written.load(std::memory_order_relaxed);  // own count
    if (written - m_taken.load(std::memory_order_acquire) == kEvents) {       // with render()
        m_isLost.store(true, std::memory_order_release);                      // with render()
        return;
    }
    m_events[written % kEvents] = {m_lastFrame, kind, m_isSustained,
                                   static_cast<std::uint8_t>(note),
                                   static_cast<std::uint8_t>(std::clamp(velocity, 1, 127))};
    m_written.store(written + 1, std::memory_order_release);  // with render()
}

void Instrument::press(std::uint64_t frame, int note, int velocity) noexcept {
    tell(frame, Kind::Press, note, velocity);
}

void Instrument::release(std::uint64_t frame, int note) noexcept {
    tell(frame, Kind::Release, note);
}

void Instrument::setSustained(std::uint64_t frame, bool isSustained) noexcept {
    m_isSustained = isSustained;
    tell(frame, Kind::Pedal);
}

void Instrument::releaseAll(std::uint64_t frame) noexcept {
    tell(frame, Kind::ReleaseAll);
}

void Instrument::silence() noexcept {
    tell(0, Kind::Silence);
}

void Instrument::setSound(std::shared_ptr<const KeySound> sound) {
    Loan* offer = &m_toneLoan;
    if (sound) {
        m_loans.push_back(std::make_unique<Loan>());
        offer = m_loans.back().get();
        offer->sound = std::move(sound);
    } else {
        m_toneLoan.users.fetch_add(1, std::memory_order_relaxed);  // nobody frees it
    }
    Loan* const before = m_offer.exchange(offer, std::memory_order_acq_rel);  // with takeOffer()
    if (before != nullptr) before->users.fetch_sub(1, std::memory_order_relaxed);  // never taken
    collect();
}

void Instrument::collect() noexcept {
    std::erase_if(m_loans, [](const std::unique_ptr<Loan>& loan) {
        return loan->users.load(std::memory_order_acquire) == 0;  // with those who let it go
    });
}

// The audio thread.

void Instrument::takeOffer() noexcept {
    if (m_offer.load(std::memory_order_relaxed) == nullptr) return;  // the exchange looks again
    Loan* const offer = m_offer.exchange(nullptr, std::memory_order_acquire);  // with setSound()
    if (offer == nullptr) return;
    m_present->users.fetch_sub(1, std::memory_order_release);  // with collect()
    m_present = offer;
}

void Instrument::dropEvents() noexcept {
    m_taken.store(m_written.load(std::memory_order_acquire),  // with tell(), both
                  std::memory_order_release);
    for (Place& place : m_places) {
        const KeyVoice::State state = place.voice.state();
        if (state == KeyVoice::State::Held || state == KeyVoice::State::Sustained) letGo(place);
    }
}

void Instrument::letGo(Place& place) noexcept {
    place.voice.release(m_rate);
    place.order = m_order++;
}

void Instrument::setPedal(bool isDown) noexcept {
    if (isDown == m_isPedalDown) return;
    m_isPedalDown = isDown;
    for (Place& place : m_places) {
        if (!isDown && place.voice.state() == KeyVoice::State::Sustained) letGo(place);
    }
}

// Of the voices that sound the one to be missed least; null while there are fewer than kVoices.
Instrument::Place* Instrument::placeToFree() noexcept {
    // Those that are let go before those that the pedal holds, and these before those of keys; of
    // each kind the oldest.
    const auto rank = [](const Place& place) {
        const bool isReleased = place.voice.state() == KeyVoice::State::Released;
        const bool isHeld = place.voice.state() == KeyVoice::State::Held;
        return std::pair(isReleased ? 0 : isHeld ? 2 : 1, place.order);
    };
    std::size_t count = 0;
    Place* found = nullptr;
    for (Place& place : m_places) {
        const KeyVoice::State state = place.voice.state();
        if (state == KeyVoice::State::Free || state == KeyVoice::State::Fading) continue;
        ++count;
        if (found == nullptr || rank(place) < rank(*found)) found = &place;
    }
    return count < kVoices ? nullptr : found;
}

void Instrument::begin(const Event& event) noexcept {
    for (Place& place : m_places) {
        const KeyVoice::State state = place.voice.state();
        const bool sounds = state != KeyVoice::State::Free && state != KeyVoice::State::Fading;
        if (sounds && place.voice.note() == event.note) place.voice.fade(m_rate);
    }
    if (Place* const tooMany = placeToFree()) tooMany->voice.fade(m_rate);
    const auto free = std::find_if(m_places.begin(), m_places.end(), [](const Place& place) {
        return place.voice.state() == KeyVoice::State::Free;
    });
    if (free == m_places.end()) return;  // so many in 5 ms that none of them is heard
    free->loan = m_present;
    m_present->users.fetch_add(1, std::memory_order_relaxed);  // it is held at present
    free->order = m_order++;
    free->voice.start(m_present->sound.get(), event.note, event.velocity, m_rate);
}

void Instrument::obey(const Event& event) noexcept {
    setPedal(event.isSustained);
    if (event.kind == Kind::Press) return begin(event);
    for (Place& place : m_places) {
        const KeyVoice::State state = place.voice.state();
        const bool isHeld = state == KeyVoice::State::Held;
        switch (event.kind) {
            case Kind::Release:
                if (!isHeld || place.voice.note() != event.note) break;
                if (m_isPedalDown) {
                    place.voice.sustain();
                } else {
                    letGo(place);
                }
                break;
            case Kind::ReleaseAll:
                if (isHeld || state == KeyVoice::State::Sustained) letGo(place);
                break;
            case Kind::Silence:
                if (state != KeyVoice::State::Free && state != KeyVoice::State::Fading)
                    place.voice.fade(m_rate);
                break;
            default:
                break;
        }
    }
}

void Instrument::renderVoices(float* const* outputs, std::uint32_t outputCount, std::uint32_t done,
                              std::uint32_t frames) noexcept {
    std::array<float*, 2> rest{};
    for (std::uint32_t out = 0; out < outputCount; ++out)
        rest[out] = outputs[out] + done;
    for (Place& place : m_places) {
        if (place.voice.state() == KeyVoice::State::Free) continue;
        place.voice.render(rest.data(), outputCount, frames);
        if (place.voice.state() == KeyVoice::State::Free)
            place.loan->users.fetch_sub(1, std::memory_order_release);  // with collect()
    }
}

void Instrument::render(float* const* outputs, std::uint32_t outputCount,
                        std::uint32_t frames) noexcept {
    if (m_isLost.load(std::memory_order_relaxed) &&           // the exchange looks again
        m_isLost.exchange(false, std::memory_order_acquire))  // with tell()
        dropEvents();
    const std::uint32_t written = m_written.load(std::memory_order_acquire);  // with tell()
    takeOffer();  // after that, so that a note has the sound that was set before it
    std::uint32_t taken = m_taken.load(std::memory_order_relaxed);  // own count
    for (std::uint32_t done = 0; done < frames;) {
        std::uint64_t ahead = frames - done;  // until the next event
        while (taken != written) {
            const Event& event = m_events[taken % kEvents];
            if (event.frame > m_frame) {
                ahead = std::min(ahead, event.frame - m_frame);
                break;
            }
            obey(event);
            ++taken;
        }
        const auto piece = static_cast<std::uint32_t>(ahead);
        renderVoices(outputs, outputCount, done, piece);
        done += piece;
        m_frame += piece;
    }
    m_taken.store(taken, std::memory_order_release);       // with tell()
    m_rendered.store(m_frame, std::memory_order_relaxed);  // a number, for frames()
}

}  // namespace veltra::console
