// SPDX-License-Identifier: MIT
/* The onsets that two detectors found in a drum loop, merged and cleaned, from C. */
#include "veltra/audio/transients_c.h"

#include <stdio.h>

int main(void) {
    VLTransient onsets[] = {
        VLTransientMake(22050, 0.75F), /* the first detector */
        VLTransientMake(44100, 0.25F),  VLTransientMake(11025, 0.5F),
        VLTransientMake(22050, 0.625F), /* the second one */
        VLTransientMake(33075, 0.125F),
    };
    size_t count = sizeof onsets / sizeof onsets[0];

    count = VLTransientsSortAndMakeUniquePos(onsets, count);
    for (size_t i = 0; i < count; ++i) {
        char text[128];
        VLTransientText(&onsets[i], text, sizeof text);
        printf("%s\n", text);
    }
    const bool is_clean = count == 4 && VLTransientsAreUniqueAndSortedByPos(onsets, count);

    VLTransientsSortByEnergyAndPos(onsets, count); /* the strongest come last */
    const VLTransient* strongest = &onsets[count - 2];
    VLTransientsSortByPos(onsets + count - 2, 2);
    printf("the two strongest: %g and %g\n", (double)strongest[0].energy,
           (double)strongest[1].energy);
    return is_clean && strongest[0].pos == 11025 && strongest[1].energy == 0.75F ? 0 : 1;
}
