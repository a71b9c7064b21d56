// SPDX-License-Identifier: MIT
// A plug-in that knows nothing of its host's memory: it asks nobody before it allocates, and uses
// plain C++ for it.
#pragma once

#include <cstddef>
#include <forward_list>
#include <vector>

namespace veltra::survivor {

class PlugIn {
public:
    // One block of audio, with an echo that gets longer each time. Throws std::bad_alloc.
    void process() { m_delayLines.emplace_front(kDelaySamples); }

private:
    static constexpr std::size_t kDelaySamples = 262'144;

    std::forward_list<std::vector<float>> m_delayLines;
};

}  // namespace veltra::survivor
