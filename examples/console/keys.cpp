// SPDX-License-Identifier: MIT
#include "keys.h"

#include "veltra/platform/clock.h"

#include <utility>

namespace veltra::console {

void Keys::setEngine(Engine* engine, double rate) {
    m_engine = engine;
    m_clock.emplace(rate);
    if (m_engine == nullptr) return;
    m_engine->instrument().setSustained(0, m_isSustained);
    m_engine->instrument().setSound(m_sound);
}

std::uint64_t Keys::frameNow() {
    const Moment now = Clocks::current().monotonic().moment();
    return m_clock->frameAt(now, m_engine->instrument().frames());
}

void Keys::press(int note, int velocity) {
    if (m_engine != nullptr) m_engine->instrument().press(frameNow(), note, velocity);
}

void Keys::release(int note) {
    if (m_engine != nullptr) m_engine->instrument().release(frameNow(), note);
}

void Keys::releaseAll() {
    if (m_engine != nullptr) m_engine->instrument().releaseAll(frameNow());
}

void Keys::setSustained(bool isSustained) {
    m_isSustained = isSustained;
    if (m_engine != nullptr) m_engine->instrument().setSustained(frameNow(), isSustained);
}

void Keys::playTone() {
    m_reader.cancel();
    m_file.clear();
    m_playedFile.clear();
    m_sound = nullptr;
    if (m_engine != nullptr) m_engine->instrument().setSound(nullptr);
}

void Keys::playFile(const std::string& path) {
    m_file = path;
    m_reader.request(path);
}

std::string Keys::tick() {
    if (m_engine != nullptr) {
        frameNow();  // to know the time better
        m_engine->instrument().collect();
    }
    auto result = m_reader.take();
    if (!result) return {};
    if (!result->sound) {
        m_file = m_playedFile;
        return result->problem;
    }
    m_playedFile = m_file;
    m_sound = std::move(result->sound);
    if (m_engine != nullptr) m_engine->instrument().setSound(m_sound);
    return {};
}

}  // namespace veltra::console
