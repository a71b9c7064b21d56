// SPDX-License-Identifier: MIT
/* A level meter for a display of the host's own, from C: the levels of two blocks on their way from
 * the audio thread to what is drawn. */
#include "veltra/audio/levels.h"
#include "veltra/controls/level_meters/decibel_scale_c.h"
#include "veltra/controls/level_meters/level_ballistics_c.h"

#include <stdio.h>

static const int64_t kMillisecond = 1000000;

int main(void) {
    VLLevelTap* tap = VLLevelTapCreate();
    VLLevelBallistics* meter = VLLevelBallisticsCreate();
    if (tap == NULL || meter == NULL) return 1;
    VLLevelBallisticsSetMaxLevelHoldTime(meter, 1.0);

    const float block[] = {0.1F, -0.5F, 0.25F, 0.0F};
    VLLevelTapAdd(tap, block, 4, 1); /* on the audio thread */

    int64_t now = 0; /* of a clock that does not go back */
    const VLLevelReading level = VLLevelTapTake(tap);
    if (level.frames > 0) {
        VLLevelBallisticsSetLevel(meter, VLMeterPositionForAmplitude(level.peak), false, now);
        printf("%.1f dB, shown at %.2f\n", VLDecibelsForAmplitude(level.peak),
               (double)VLLevelBallisticsDisplayLevel(meter));
    }
    const float top = VLLevelBallisticsDisplayLevel(meter);

    VLLevelBallisticsSetLevel(meter, 0.0F, false, now); /* the music has stopped: let it fall */
    int ticks = 0;
    for (int64_t wait; (wait = VLLevelBallisticsTimeToTick(meter, now)) >= 0; ++ticks) {
        now += wait;
        VLLevelBallisticsTick(meter, now);
    }
    printf("at rest after %d ticks, %d ms; the maximum was %.2f\n", ticks,
           (int)(now / kMillisecond), (double)VLLevelBallisticsMaxDisplayLevel(meter));
    const bool is_right = top > 0.8F && top < 0.9F && VLLevelBallisticsDisplayLevel(meter) == 0.0F;
    VLLevelBallisticsDestroy(meter);
    VLLevelTapDestroy(tap);
    return is_right ? 0 : 1;
}
