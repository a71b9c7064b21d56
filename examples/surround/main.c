// SPDX-License-Identifier: MIT
/* Surround formats, from C: which channels a layout tag orders how, and where each is heard. */
#include "veltra/audio/channel_layout.h"

#include <stdio.h>

int main(void) {
    const uint32_t tag = (123U << 16) | 6U; /* 5.1 as film sound has it: L C R Ls Rs LFE */
    uint32_t mapping[8];
    uint32_t format = FindFormatForAudioChannelLayoutTag(tag, mapping);
    uint32_t channels = GetChannelIDBitMask(format);

    for (uint32_t position = 0; position < (tag & 0xFFFF); ++position) {
        uint32_t id = mapping[position];
        printf("%u: %-3s label %u, %.1f degrees\n", (unsigned)position, GetChannelLabel(id),
               (unsigned)GetLabelForChannelID(format, id), GetAngleForChannel(format, id));
        channels &= ~(1U << id);
    }
    return format == 5 && channels == 0 ? 0 : 1;
}
