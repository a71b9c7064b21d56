// SPDX-License-Identifier: MIT
// A 5.1 file in the order of MPEG 5.1 A, played on outputs in the format's own order.
#include "veltra/audio/surround_names.h"

#include <array>
#include <cstdio>
#include <cstdlib>

int main() {
    using veltra::LayoutTag;
    using veltra::SurroundFormat;

    const auto remap = veltra::remapChannels(SurroundFormat::Surround51, LayoutTag::Mpeg51A,
                                             LayoutTag::FormatsOwn);
    if (!remap.has_value()) return EXIT_FAILURE;
    std::printf("%s\n", remap->words.c_str());

    const std::array<float, 6> file = {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F};  // one frame
    std::array<float, 6> output{};
    for (std::size_t channel = 0; channel < output.size(); ++channel) {
        const auto source = remap->sources[channel];
        output[channel] = source.has_value() ? file[*source] : 0.0F;
    }
    return output[4] == 0.3F ? EXIT_SUCCESS : EXIT_FAILURE;  // the centre
}
