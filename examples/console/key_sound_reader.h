// SPDX-License-Identifier: MIT
// Reads files for the keyboard in a thread of its own.
#pragma once

#include "key_sound.h"

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace veltra::console {

// Thread: main.
class KeySoundReader {
public:
    KeySoundReader() = default;
    KeySoundReader(const KeySoundReader&) = delete;
    KeySoundReader& operator=(const KeySoundReader&) = delete;
    ~KeySoundReader() { cancel(); }

    struct Result {
        std::string path;
        std::shared_ptr<const KeySound> sound;  // null: `problem` says why, in one line
        std::string problem;
    };

    // Of several files only the last one is read to its end.
    void request(const std::string& path);
    // Nothing comes of what is being read.
    void cancel() noexcept;
    bool isReading() const noexcept { return m_reading.valid(); }

    // What has been read, once.
    std::optional<Result> take();

private:
    // With the thread that reads, which ends within a chunk; one whose file hangs stays behind.
    std::shared_ptr<std::atomic<bool>> m_stop;
    std::future<Result> m_reading;
};

}  // namespace veltra::console
