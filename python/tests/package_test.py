#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Laws and tables of the package, without numpy and, where there is one, with it."""
import array
import copy
import fractions
import math
import os
import pickle
import random
import subprocess
import sys
import unittest
import zlib
from unittest import mock

import veltra
from veltra import Channel, SampleFormat, SurroundFormat, Transient, Transients, _buffers

INTEGERS = (SampleFormat.INT8, SampleFormat.INT16, SampleFormat.INT24, SampleFormat.INT32)


class Buffers:
    """What takes buffers or makes arrays."""

    def test_streams_come_back_whatever_their_format_and_channels(self):
        noise = random.Random(1)
        for sample_format in INTEGERS + (SampleFormat.FLOAT32, SampleFormat.FLOAT64):
            # The lowest bits of 32 are lost on the way; floats are made of numbers.
            exact = {-4: array.array("f", range(-30, 30)).tobytes(),
                     -8: array.array("d", range(-30, 30)).tobytes(),
                     4: bytes(noise.randrange(256) if i % 4 < 3 else 0 for i in range(240))}
            for swapped in (False, True):
                if swapped and sample_format in (SampleFormat.FLOAT64, SampleFormat.INT32):
                    continue
                stream = exact.get(sample_format, noise.randbytes(60 * sample_format.size))
                for channels in (1, 2, 3, 5):
                    floats = veltra.to_float(stream, sample_format, swapped=swapped,
                                             channels=channels)
                    rows = [floats] if channels == 1 else floats
                    self.assertEqual([len(row) for row in rows], [60 // channels] * channels)
                    for given in (rows, [list(row) for row in rows], [iter(row) for row in rows]):
                        again = veltra.from_float(*given, sample_format=sample_format,
                                                  swapped=swapped)
                        self.assertEqual(again, stream, (sample_format, swapped, channels))
                self.assertEqual(len(veltra.to_float(b"", sample_format)), 0)
                self.assertEqual([len(row) for row in veltra.to_float(b"", 2, channels=2)], [0, 0])

    def test_what_is_no_row_of_floats_is_refused(self):
        rows = [b"1234", bytearray(8), memoryview(b"1234"), "1234", ["1", "0.5"], [[0.0, 0.0]]]
        if _buffers.numpy:
            rows += [_buffers.numpy.zeros((2, 2)), _buffers.numpy.array(0.5)]
        for row in rows:
            for channels, sample_format in ((1, 2), (2, 2), (2, 4), (3, 2)):
                with self.assertRaises((TypeError, ValueError)):
                    veltra.from_float(*[row] * channels, sample_format=sample_format)

    def test_whatever_counts_as_a_number_is_one(self):
        for row in ([0.5], [fractions.Fraction(1, 2)], array.array("d", [0.5]), memoryview(array.array("f", [0.5]))):
            self.assertEqual(veltra.from_float(row, sample_format=2), veltra.from_float([0.5], sample_format=2))

    def test_each_kind_of_buffer_is_read_alike(self):
        data = bytes(range(96))
        spaced = bytearray(192)
        spaced[::2] = data
        kinds = [data, bytearray(data), memoryview(data), array.array("h", data),
                 memoryview(spaced)[::2]]
        if _buffers.numpy:
            kinds += [_buffers.numpy.frombuffer(data, dtype=">i2").reshape(6, 8),
                      _buffers.numpy.frombuffer(bytearray(data), dtype="u1")]
        for kind in kinds:
            self.assertEqual(veltra.crc32(kind), zlib.crc32(data))
            self.assertEqual(list(veltra.to_float(kind, 2)), list(veltra.to_float(data, 2)))
            self.assertEqual(veltra.swap(veltra.swap(kind, 4), 4), data)
        self.assertEqual(veltra.crc32(memoryview(b""), 7), 7)
        words = array.array("H", [0x0102, 0x0304])
        veltra.swap_in_place(words, 2)
        self.assertEqual(list(words), [0x0201, 0x0403])
        for refused, error in ((data, TypeError), (memoryview(spaced)[::2], ValueError)):
            with self.assertRaises(error):
                veltra.swap_in_place(refused, 2)

    def test_transients_are_records(self):
        onsets = Transients([Transient(9, 3.0), Transient(-1, 1.0), Transient(9, 2.0, 440.0)])
        self.assertEqual(len(bytes(onsets)), 108)
        self.assertEqual(Transients(bytes(onsets)), onsets)
        if _buffers.numpy:
            records = onsets.to_numpy()
            self.assertEqual(records["pos"].tolist(), [9, -1, 9])
            self.assertEqual(Transients(records), onsets)
            swapped = records.astype(records.dtype.newbyteorder())
            self.assertRaises(TypeError, Transients, swapped)
        else:
            self.assertRaises(ImportError, onsets.to_numpy)


class WithoutNumpy(Buffers, unittest.TestCase):
    def setUp(self):
        patch = mock.patch.object(_buffers, "numpy", None)
        patch.start()
        self.addCleanup(patch.stop)


@unittest.skipUnless(_buffers.numpy, "numpy is not installed")
class WithNumpy(Buffers, unittest.TestCase):
    def test_results_are_rows_of_an_array(self):
        self.assertEqual(veltra.to_float(bytes(12), 2, channels=3).shape, (3, 2))
        both = _buffers.numpy.array([[0.5, -0.5], [0.25, 1.0]])  # of doubles
        self.assertEqual(veltra.from_float(*both, sample_format=1), bytes([0x40, 0x20, 0xC0, 0x7F]))


class Values(unittest.TestCase):
    def test_what_c_would_cut_off_or_misread_is_refused(self):
        for error, call in (
                (ValueError, lambda: veltra.to_float(bytes(5), 2)),
                (ValueError, lambda: veltra.to_float(bytes(6), 2, channels=2)),
                (ValueError, lambda: veltra.to_float(bytes(6), 2, channels=0)),
                (ValueError, lambda: veltra.to_float(bytes(6), 5)),
                (ValueError, lambda: veltra.to_float(bytes(8), -8, swapped=True)),
                (ValueError, lambda: veltra.from_float([0.0], [], sample_format=2)),
                (ValueError, lambda: veltra.from_float(sample_format=2)),
                (ValueError, lambda: veltra.swap(bytes(5), 4)),
                (ValueError, lambda: veltra.swap(bytes(6), 3)),
                (ValueError, lambda: veltra.swap_samples(bytes(5), 16)),
                (ValueError, lambda: veltra.swap_samples(bytes(5), 12)),
                (ValueError, lambda: veltra.swap_fields(b"", [2, 0, 2])),
                (ValueError, lambda: veltra.swap_fields(b"", [128])),
                (ValueError, lambda: veltra.crc16("a\0b")),
                (ValueError, lambda: veltra.crc16("a" * 65537)),
                (ValueError, lambda: veltra.utf8_check(b"a\0\xff")),
                (ValueError, lambda: veltra.midi_text(1, 4)),
                (ValueError, lambda: Transients(bytes(37))),
                (ValueError, lambda: Transients().thin_out(-1)),
                (TypeError, lambda: Transients([5])),
                (TypeError, lambda: Transients().append(3)),
                (TypeError, lambda: Transients([Transient()]).__setitem__(0, 3)),
                (TypeError, lambda: veltra.utf8_check(0)),
                (OverflowError, lambda: setattr(Transient(5), "pos", 1 << 64)),
                (OverflowError, lambda: setattr(veltra.MusicalContext(0), "position_in_ticks", 1 << 40)),
                (TypeError, lambda: veltra.swap_record(b"abcd", "\3")),
                (TypeError, lambda: copy.copy(veltra.LevelBallistics())),
                (TypeError, lambda: copy.deepcopy(veltra.LevelBallistics())),
                (TypeError, lambda: pickle.dumps(veltra.LevelBallistics())),
                (IndexError, lambda: Transients()[0]),
                (OverflowError, lambda: Transient(1 << 63)),
                (OverflowError, lambda: veltra.crc32(b"a", -1)),
                (OverflowError, lambda: veltra.channel_label(1 << 32)),
                (OverflowError, lambda: veltra.note_name(1 << 31)),
                (OverflowError, lambda: veltra.MusicalContext(3_000_000_000)),
                (OverflowError, lambda: veltra.LevelBallistics().tick(1e10))):
            self.assertRaises(error, call)

    def test_bytes(self):
        self.assertEqual(veltra.crc16("123456789"), 0xE5CC)
        self.assertEqual(veltra.crc32(b"56789", veltra.crc32(b"1234")), 0xCBF43926)
        self.assertEqual([veltra.swap_samples(b"\1\2\3\4\5\6", bits) for bits in (8, 16, 24)],
                         [b"\x81\x82\x83\x84\x85\x86", b"\2\1\4\3\6\5", b"\3\2\1\6\5\4"])
        self.assertEqual(veltra.swap_fields(b"abcdefg", [4, -2, 2]), b"dcbaefg")
        for kind in (bytes, bytearray, memoryview):
            self.assertEqual(veltra.swap_record(b"abcdefg", kind(b"\7\17\7\0")),
                             (b"dcbafeg", 6, False))
        self.assertEqual([veltra.utf8_cut("Café", size) for size in (0, 3, 4, 5, 99)],
                         [b"", b"Caf", b"Caf", "Café".encode(), "Café".encode()])
        self.assertEqual([veltra.utf8_check(text) for text in (b"", "é".encode(), b"\xc3")],
                         [True, True, False])
        self.assertTrue(veltra.utf8_is_ascii(b"abc") and not veltra.utf8_is_ascii(b"ab\xc3"))

    def test_a_kernel_without_a_name_changes_nothing(self):
        self.addCleanup(veltra.use_kernel, "crc32")
        self.assertTrue(veltra.use_kernel("crc32", "plain"))
        self.assertFalse(veltra.use_kernel("crc32", "") or veltra.use_kernel("crc32", "plain\0"))
        self.assertEqual(veltra.kernels_in_force()["crc32"], "plain")

    def test_channels_and_notes(self):
        for surround in SurroundFormat:
            held = veltra.channels_of(surround)
            self.assertEqual(sorted(veltra.channel_order(surround)), held)
            for channel in held:
                self.assertEqual(veltra.angle(surround, channel) is None, channel == Channel.LFE)
        film = 123 << 16 | 6
        self.assertEqual(veltra.format_of_layout(film), SurroundFormat.SURROUND_51)
        self.assertEqual([veltra.channel_label(c) for c in veltra.channel_order(5, film)],
                         ["L", "C", "R", "Ls", "Rs", "LFE"])
        self.assertIsNone(veltra.format_of_layout(0) or veltra.channel_order(4, film))
        self.assertEqual((veltra.angle(8, 9), veltra.core_audio_label(8, 9)), (-22.5, 7))
        self.assertEqual([veltra.midi_text(0, style) for style in veltra.MIDIStyle],
                         ["0", "\u00b1 0", "0x00", "C-2"])
        self.assertEqual(veltra.note_name(60), "C3")

    def test_musical_time(self):
        context = veltra.MusicalContext(132300, 9)
        self.assertEqual((context.beats, context.tempo, context.second), (6.0, 120000, 9))
        self.assertEqual((len(bytes(context)), context.position_in_bar_in_ticks), (52, -30720))

    def test_transients(self):
        noise = random.Random(2)
        onsets = Transients(Transient(noise.randrange(50), noise.randrange(9)) for _ in range(200))
        weakest = sorted(range(200), key=lambda i: (onsets[i].energy, onsets[i].pos))
        for change, expected in (
                (Transients.sort, sorted(onsets, key=lambda t: t.pos)),
                (Transients.sort_by_energy, [onsets[i] for i in weakest]),
                (Transients.sort_and_make_unique,
                 list({t.pos: t for t in reversed(sorted(onsets, key=lambda t: t.pos))}.values())
                 [::-1]),
                (lambda t: t.thin_out(70),
                 sorted((onsets[i] for i in sorted(weakest[:70])), key=lambda t: t.pos)),
                (lambda t: t.thin_out(1 << 70), sorted(onsets, key=lambda t: t.pos))):
            changed = Transients(onsets)
            change(changed)
            self.assertEqual(list(changed), expected)
        self.assertFalse(onsets.is_sorted() or onsets.is_unique_and_sorted())
        onsets.sort_and_make_unique()
        onsets.append(onsets[-1])
        self.assertTrue(onsets.is_sorted() and not onsets.is_unique_and_sorted())
        onsets[0] = Transient(-7)
        self.assertEqual(repr(onsets[0]), "CTransient: pos -7, Energy 1, visibleweight 1, FreqHz 0")
        self.assertTrue(Transients().is_sorted())

    def test_meters(self):
        meter = veltra.LevelBallistics(fall_back_step=0.1, fall_back_step_time=0.05,
                                       max_level_hold_time=1.0)
        self.assertTrue(meter.set_level(1.2, now=0.0) and meter.peak)
        self.assertEqual(meter.time_to_hold_end(0.25), 0.75)
        meter.set_level(0.0, now=0.1)
        self.assertAlmostEqual(meter.display_level, 0.9, 6)
        self.assertAlmostEqual(meter.time_to_tick(0.13), 0.02)
        self.assertEqual(meter.time_to_tick(0.3), 0.0)
        self.assertTrue(meter.tick(0.15) and not meter.tick(60.0))
        self.assertEqual((meter.level, meter.display_level, meter.time_to_tick(60.0)), (0, 0, None))
        meter.peak = False
        meter.drop_maximum()
        self.assertFalse(meter.peak or meter.max_display_level)
        self.assertTrue(meter.set_level(0.0, force_display=True))
        self.assertEqual(veltra.position_to_decibels(veltra.decibels_to_position(-20)), -20)
        self.assertAlmostEqual(veltra.amplitude_to_position(-0.1), 0.5, 6)
        self.assertEqual(veltra.amplitude_to_decibels(0), -math.inf)

    def test_the_library_is_the_one_named_and_of_one_version(self):
        self.assertEqual(veltra.library_version(), veltra.__version__)
        if "VELTRA_LIBRARY" in os.environ:  # an installed package finds its own
            self.assertEqual(veltra.LIBRARY_PATH, os.environ["VELTRA_LIBRARY"])
        newer = ("import sys, types; sys.modules['veltra._version'] = v = types.ModuleType('v'); "
                 "v.__version__ = '99.0.0'; ")
        for path, before, words in (("/nowhere/libveltra.so", "", "set VELTRA_LIBRARY"),
                                    ("libc.so.6", "", "undefined symbol"),
                                    (veltra.LIBRARY_PATH, newer, "the package needs 99.0.0")):
            failed = subprocess.run([sys.executable, "-c", before + "import veltra"], text=True,
                                    env={**os.environ, "VELTRA_LIBRARY": path},
                                    stderr=subprocess.PIPE, check=False)
            self.assertEqual(failed.returncode, 1)
            self.assertIn(words, failed.stderr)
            self.assertNotIn("; libveltra.so", failed.stderr)  # it looked nowhere else


if __name__ == "__main__":
    if sys.argv[1:] == ["WithNumpy"] and not _buffers.numpy:
        print("package_test.py: Skipped\nneeds numpy")
    else:
        unittest.main()
