// SPDX-License-Identifier: MIT
#include "key_sound_reader.h"

#include "background.h"

#include <new>
#include <utility>

namespace veltra::console {

namespace {

KeySoundReader::Result read(std::string path, const std::atomic<bool>& stop) {
    KeySoundReader::Result result;
    result.path = std::move(path);
    try {
        const auto file = AudioFile::open(result.path, result.problem);
        if (file) result.sound = KeySound::read(*file, stop);
        if (file && !result.sound)
            result.problem = "there is nothing in it to play; choose another file";
    } catch (const std::bad_alloc&) {
        result.problem = "memory is too short for it; choose a shorter file";
    }
    if (!result.problem.empty()) result.problem = result.path + ": " + result.problem;
    return result;
}

}  // namespace

void KeySoundReader::request(const std::string& path) {
    cancel();
    m_stop = std::make_shared<std::atomic<bool>>(false);
    m_reading = inBackground([path, stop = m_stop] { return read(path, *stop); });
}

void KeySoundReader::cancel() noexcept {
    if (m_stop) m_stop->store(true, std::memory_order_relaxed);  // a wish; nothing comes with it
    m_reading = {};
}

std::optional<KeySoundReader::Result> KeySoundReader::take() {
    if (!isReady(m_reading)) return std::nullopt;
    return m_reading.get();
}

}  // namespace veltra::console
