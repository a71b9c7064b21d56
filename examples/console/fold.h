// SPDX-License-Identifier: MIT
// How the channels of a file come to the two outputs.
#pragma once

#include "channel_plan.h"

#include <cstddef>

namespace veltra::console {

struct Weights {
    float left = 0.0F;
    float right = 0.0F;
};

// Where a channel is heard by its angle, with constant power: the squares of its weights add up to
// 1. What stands at the front left or further to the left is left, also behind; what stands ahead
// or right behind is in the middle. An LFE channel is left out, as stereo mixes of surround sound
// have it: it only repeats what the others lack the speakers for. Two exceptions: a single channel
// goes to both outputs as it is; and where the format is not known, channels go left and right in
// turn.
Weights foldWeights(const ChannelPlan& plan, std::size_t channel, std::size_t channels);

// Whether a mix to stereo leaves this channel out.
bool isLeftOut(const ChannelPlan& plan, std::size_t channel, std::size_t channels);

// What the outputs are weighted with, for -1 left to 1 right: with constant power, 1 in the middle,
// so that a file in the middle stays as it is, and at an end 3 dB more. Also the balance of the
// whole mix.
// Thread: any. Realtime-safe: yes.
Weights panWeights(double pan) noexcept;

// The amplitude of a fader: 0 from kSilentDecibels down. Thread: any. Realtime-safe: yes.
inline constexpr double kSilentDecibels = -90.0;
inline constexpr double kMostDecibels = 24.0;
float amplitude(double decibels) noexcept;

}  // namespace veltra::console
