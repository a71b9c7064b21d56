// SPDX-License-Identifier: MIT
// The movement of a level meter with no user interface: for a hardware display, a web page or a
// terminal.
#include "veltra/controls/level_meters/level_ballistics.h"

#include <cstdio>

int main() {
    const veltra::Moment start;
    veltra::Moment now = start;

    veltra::LevelBallistics meter;
    meter.setFallBackStep(0.1F);  // falls by 0.1 in 50 ms
    meter.setFallBackStepTime(0.05);
    meter.setMaxLevelHoldTime(1.0);

    meter.setLevel(1.2F, false, now);  // up at once, and the clip light goes on
    std::printf("at once:  %.2f, clip %d\n", meter.displayLevel(), meter.peak());
    now += veltra::milliseconds(100);
    if (meter.setLevel(0.0F, false, now)) {  // true: draw it again
        std::printf("100 ms:   %.2f, maximum %.2f\n", meter.displayLevel(),
                    meter.maxDisplayLevel());
    }
    while (meter.tick(now)) {  // nobody sends levels any more: let it fall
        now += veltra::milliseconds(50);
    }
    std::printf("%.0f ms:  %.2f\n", (now - start).seconds() * 1000, meter.displayLevel());
    meter.setPeak(false);  // the user has seen it
    return meter.displayLevel() == 0.0F && meter.maxDisplayLevel() > 1.0F && !meter.peak() ? 0 : 1;
}
