// SPDX-License-Identifier: MIT
// Keeps an engine playing: on the device that was asked for while it works, else to no device.
#pragma once

#include "audio_output.h"
#include "engine.h"
#include "options.h"

#include <memory>
#include <string>

namespace veltra::console {

// Thread: main. Everything that goes wrong is told in one line, on which playing goes on.
class LiveOutput {
public:
    // Opens the output, preferably at `rate`; nothing plays yet. `notice` is empty, or why there is
    // no device.
    LiveOutput(Device device, std::int32_t rate, std::string& notice);

    std::int32_t rate() const { return m_output->rate(); }
    std::string name() const { return m_output->name(); }

    // Plays the engine, which must live until stop(). Answers an empty text or a problem.
    std::string start(Engine& engine);
    // Goes on without a device when the device has gone away. Call it every now and then. Answers
    // an empty text or the problem.
    std::string keepRunning();
    void stop() { m_output->stop(); }

private:
    std::unique_ptr<AudioOutput> m_output;
    Engine* m_engine = nullptr;
};

}  // namespace veltra::console
