// SPDX-License-Identifier: MIT
/* Musical time and notes as text, from C: where in the music a sample lies. */
#include "veltra/audio/midi_formatter_c.h"
#include "veltra/audio/musical_context_c.h"

#include <stdio.h>
#include <string.h>

/* The host's own transport: 48,000 samples a second, 90 beats a minute. */
static void at_90_beats(int32_t sample_position, int32_t second, VLMusicalContext* context) {
    const double samples_per_beat = 48000.0 * 60.0 / 90.0;
    (void)second;
    context->tempo = 90000;
    context->positionInTicks = (int32_t)(sample_position / samples_per_beat * kVLTicksPerBeat);
}

static void print(const char* transport, const VLMusicalContext* context) {
    const int beat = context->positionInTicks / kVLTicksPerBeat;
    printf("%s: sample %d is in bar %d, beat %d\n", transport, (int)context->samplePosition,
           beat / context->meterNumerator + 1, beat % context->meterNumerator + 1);
}

int main(void) {
    const VLMusicalContext usual = VLMusicalContextMake(132300, 0, NULL);
    const VLMusicalContext own = VLMusicalContextMake(192000, 0, at_90_beats);
    print("120 beats", &usual);
    print("90 beats", &own);

    char note[16];
    VLMIDIText(60, kVLMIDINoteName, note, sizeof note);
    printf("note 60 is %s\n", note);
    return usual.positionInTicks == 6 * kVLTicksPerBeat &&
                   own.positionInTicks == 6 * kVLTicksPerBeat && strcmp(note, "C3") == 0
               ? 0
               : 1;
}
