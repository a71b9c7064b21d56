#include "mixing.h"

#include "lanes.h"

#include <cmath>

namespace veltra::console {

float addToMix(float* destination, const float* source, std::size_t count) noexcept {
    Range range;
    std::size_t done = 0;
    for (; done + kLanes <= count; done += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i) {
            const std::size_t place = done + i * kWidth;
            const Floats values = load(source + place);
            store(destination + place, load(destination + place) + values);
            range.show(i, values);
        }
    }
    float peak = range.largestMagnitude();
    for (; done < count; ++done) {
        destination[done] += source[done];
        peak = std::max(peak, std::fabs(source[done]));
    }
    return peak;
}

}  // namespace veltra::console
