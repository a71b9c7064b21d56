// SPDX-License-Identifier: MIT
// How loud a programme sounds, measured as broadcasters do (ITU-R BS.1770, EBU R 128). Done by
// libebur128 where the library was built with it; without it there is none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>

namespace veltra {

// Where a channel is heard: what counts how much.
enum class LoudnessRole : std::uint8_t {
    Front,     // and above, behind: as it is
    Surround,  // at the sides: 1.5 dB more
    Unused,    // low-frequency effects: not at all
};

struct LoudnessValues {
    // LUFS; minus infinity for silence and before anything is known.
    double momentary = -std::numeric_limits<double>::infinity();   // of the last 0.4 s
    double shortTerm = -std::numeric_limits<double>::infinity();   // of the last 3 s
    double integrated = -std::numeric_limits<double>::infinity();  // of all, gated
    // dBTP: the highest level between the samples, of any channel but the unused.
    double truePeak = -std::numeric_limits<double>::infinity();
};

class LoudnessAnalysis {
public:
    LoudnessAnalysis() noexcept = default;
    LoudnessAnalysis(const LoudnessAnalysis&) = delete;
    LoudnessAnalysis& operator=(const LoudnessAnalysis&) = delete;
    virtual ~LoudnessAnalysis() = default;

    // Finite samples, interleaved. Each 0.1 s the loudness is computed anew.
    // Thread: one at a time. Realtime-safe: yes.
    virtual void add(const float* samples, std::size_t frames) noexcept = 0;

    // Thread: as add(). Realtime-safe: yes.
    virtual LoudnessValues values() const noexcept = 0;
};

// One role a channel. Null when there is no library, when memory is out, and for numbers of
// channels (1 to 64) and sample rates (16 to 2,822,400) that it does not take.
// Thread: any. Realtime-safe: no.
std::unique_ptr<LoudnessAnalysis> makeLoudnessAnalysis(
    std::uint32_t sampleRate, std::span<const LoudnessRole> channels) noexcept;

}  // namespace veltra
