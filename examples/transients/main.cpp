// SPDX-License-Identifier: MIT
// The onsets of a signal: found here by the simplest of detectors, kept in a CTransients.
#include "veltra/audio/transients.h"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <vector>

namespace {

// Clicks that fade away, at every quarter of a second, some loud and some soft.
std::vector<float> clicks() {
    std::vector<float> signal(44'100);
    for (std::size_t index = 0; index < signal.size(); ++index) {
        const std::size_t beat = index / 11'025, since = index % 11'025;
        const float loudness = beat % 2 == 0 ? 1.0F : 0.25F;
        signal[index] = loudness * std::exp(static_cast<float>(since) * -0.01F);
    }
    return signal;
}

}  // namespace

int main() {
    const std::vector<float> signal = clicks();
    veltra::CTransients onsets;
    for (std::size_t index = 1; index < signal.size(); ++index) {
        const float rise = signal[index] - signal[index - 1];
        if (rise > 0.1F) onsets.push_back({static_cast<std::int64_t>(index), rise});
    }
    onsets.push_back(onsets.front());  // a second detector found this one, too

    onsets.SortAndMakeUniquePos();
    std::cout << onsets << '\n';
    const bool isClean = onsets.AreUniqueAndSortedByPos() && onsets.size() == 3;

    onsets.ThinOutToSizeAndSortByPos(2);  // keeps the two weakest
    std::printf("%s", onsets.TraceAsPushBackList().c_str());
    return isClean && onsets.size() == 2 && onsets[0].pos == 11'025 ? 0 : 1;
}
