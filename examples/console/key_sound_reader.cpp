// SPDX-License-Identifier: MIT
#include "key_sound_reader.h"

#include <chrono>
#include <new>
#include <thread>
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
    std::packaged_task<Result()> task([path, stop = m_stop] { return read(path, *stop); });
    m_reading = task.get_future();
    std::thread(std::move(task)).detach();
}

void KeySoundReader::cancel() noexcept {
    if (m_stop) m_stop->store(true, std::memory_order_relaxed);  // a wish; nothing comes with it
    m_reading = {};
}

std::optional<KeySoundReader::Result> KeySoundReader::take() {
    if (!isReading() || m_reading.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return std::nullopt;
    return m_reading.get();
}

}  // namespace veltra::console
