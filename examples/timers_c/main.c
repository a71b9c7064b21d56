// SPDX-License-Identifier: MIT
/* Timers in a C program that waits in poll(), as for its devices and connections. */
#include "veltra/infrastructure/timer_c.h"
#include "veltra/platform/run_loop_c.h"

#include <poll.h>
#include <stdio.h>

typedef struct Metronome {
    int beats;
    bool is_done;
} Metronome;

static void beat(VLTimer* timer, void* context) {
    Metronome* metronome = context;
    printf("beat %d\n", ++metronome->beats);
    if (metronome->beats < 4) return;
    VLTimerStop(timer);
    metronome->is_done = true;
}

int main(void) {
    Metronome metronome = {0};
    VLTimer* timer = VLTimerCreate(0.02, true, beat, &metronome);
    if (!VLTimerStart(timer)) return 1; /* on the run loop of this thread */

    VLRunLoop* loop = VLRunLoopCurrent();
    struct pollfd watched = {.fd = VLRunLoopDescriptor(loop), .events = POLLIN};
    while (!metronome.is_done) {
        if (poll(&watched, 1, -1) > 0) VLRunLoopRunDue(loop);
        /* and what the host does about its own descriptors */
    }
    const bool is_idle = VLRunLoopTimeToDeadline(loop) < 0 && !VLTimerIsActive(timer);
    VLTimerDestroy(timer);
    return is_idle ? 0 : 1;
}
