// SPDX-License-Identifier: MIT
// The keyboard as the main thread plays it on an engine, at the time at which it is told.
#pragma once

#include "engine.h"
#include "key_sound_reader.h"
#include "note_clock.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

// Thread: main.
class Keys {
public:
    // Plays on this engine, which must live until the next call; null: on none, nothing is heard.
    // The sound and the pedal stay as they are.
    void setEngine(Engine* engine, double rate);

    void press(int note, int velocity);  // 1 to 127
    void release(int note);
    void releaseAll();
    void setSustained(bool isSustained);
    bool isSustained() const noexcept { return m_isSustained; }

    // What later notes sound like. A file comes when it has been read; until then, and when it
    // cannot be, it stays as it is.
    void playTone();
    void playFile(const std::string& path);
    // The file that is played, or being read; empty: a tone.
    const std::string& file() const noexcept { return m_file; }
    bool isReading() const noexcept { return m_reader.isReading(); }

    // Call it every now and then. Answers a problem in one line, or an empty text.
    std::string tick();

private:
    std::uint64_t frameNow();

    Engine* m_engine = nullptr;
    std::optional<NoteClock> m_clock;
    bool m_isSustained = false;
    std::string m_file;
    std::string m_playedFile;  // other than m_file while that is being read
    std::shared_ptr<const KeySound> m_sound;
    KeySoundReader m_reader;
};

}  // namespace veltra::console
