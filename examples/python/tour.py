#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A tour of the package veltra: a drum loop from the bytes of its file to a meter."""
import math
import struct

import veltra

# 24 bits, two channels, little-endian, as in a WAV file: two decaying beats of 220 Hz.
loop = [0.9 * math.sin(i * 220 * math.tau / 44100) * math.exp(-(i % 11025) / 2000)
        for i in range(22050)]
stream = b"".join(struct.pack("<i", round(s * 0x7FFFFF))[:3] * 2 for s in loop)

left, right = veltra.to_float(stream, veltra.SampleFormat.INT24, swapped=True, channels=2)
again = veltra.from_float(left, right, sample_format=veltra.SampleFormat.INT24, swapped=True)
print(f"{len(left)} frames, CRC-32 {veltra.crc32(stream):08x}")
assert again == stream

onsets = veltra.Transients([veltra.Transient(11025, energy=0.9, freq_hz=220.0),
                            veltra.Transient(0, energy=0.9, freq_hz=220.0),
                            veltra.Transient(11025, energy=0.4)])
onsets.sort_and_make_unique()  # by position, the first of each
for onset in onsets:
    now = veltra.MusicalContext(onset.pos)
    note = round(69 + 12 * math.log2(onset.freq_hz / 440))
    print(f"onset at beat {now.beats}, {veltra.note_name(note)}")
assert [onset.energy > 0.8 for onset in onsets] == [True, True]

meter = veltra.LevelBallistics(max_level_hold_time=1.0)
for start in range(0, len(left), 441):  # a level for each 10 ms
    peak = max(map(abs, left[start:start + 441]))
    meter.set_level(veltra.amplitude_to_position(peak), now=start / 44100)
print(f"shown at {meter.display_level:.2f}, maximum {meter.max_display_level:.2f} "
      f"({veltra.position_to_decibels(meter.max_display_level):.1f} dB)")
assert meter.max_display_level > meter.display_level > 0

for channel in veltra.channel_order(veltra.SurroundFormat.SURROUND_51):
    print(veltra.channel_label(channel), veltra.angle(veltra.SurroundFormat.SURROUND_51, channel))
assert veltra.angle(veltra.SurroundFormat.SURROUND_51, veltra.Channel.LFE) is None
