#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The tools for sample data from Python: samples, records, checksums and names of a file."""
import sys

import veltra


def samples():
    stream = bytes([0x40, 0x00, 0xC0, 0x00, 0x00, 0x01])  # 16 bits, big-endian
    floats = veltra.to_float(stream, veltra.SampleFormat.INT16)
    print("samples:", *floats)
    return veltra.from_float(floats, sample_format=veltra.SampleFormat.INT16) == stream


def channels():
    left, right = veltra.to_float(bytes.fromhex("400000c00000"), veltra.SampleFormat.INT24,
                                  channels=2)
    print("left", left[0], "right", right[0])
    return (left[0], right[0]) == (0.5, -0.5)


def records():
    # A 32-bit value, a 16-bit one, three bytes that stay: by sizes, and by a table of codes.
    swapped = veltra.swap_fields(b"\x01\x02\x03\x04\x05\x06abc", [4, 2, -3])
    record = veltra.swap_record(b"\x01\x02\x03\x04\x05\x06abc", bytes([7, 15, 0]))
    cut = veltra.swap_record(b"\x01\x02\x03\x04\x05", bytes([7, 15, 0]))
    return (swapped == record.data == b"\x04\x03\x02\x01\x06\x05abc" and record.is_whole
            and record.taken == 6 and not cut.is_whole)


def checksums():
    in_pieces = veltra.crc32(b"56789", veltra.crc32(b"1234"))
    print(f"CRC-32 {in_pieces:08x}, CRC-16 {veltra.crc16('123456789'):04x}")
    return (in_pieces, veltra.crc16("123456789")) == (0xCBF43926, 0xE5CC)


def names():
    field = veltra.utf8_cut("Café ♪", 7)  # the note, of three bytes, does not fit
    print("name:", field.decode())
    return field == "Café ".encode() and not veltra.utf8_check(b"\xC3")


def kernels():
    chosen = veltra.kernels_in_force()
    for family, variant in chosen.items():
        print(f"{family} runs as {variant}")
        veltra.use_kernel(family, "plain")  # to compare, in a test or a bug report
    plain = checksums()
    for family, variant in chosen.items():
        veltra.use_kernel(family, variant)  # without a name, the best that the processor runs
    return plain and chosen == veltra.kernels_in_force() and not veltra.use_kernel("crc32", "none")


checks = (samples, channels, records, checksums, names, kernels)
failed = [check.__name__ for check in checks if not check()]
sys.exit(f"not as expected: {', '.join(failed)}" if failed else 0)
