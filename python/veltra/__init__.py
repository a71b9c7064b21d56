# SPDX-License-Identifier: MIT
"""Sample data, musical time, transients and level meters, by the library libveltra.

Buffers are whatever has the buffer protocol: bytes, bytearray, memoryview, array.array, arrays of
numpy. Where numpy is installed, results that hold many numbers are numpy arrays, else array.array.

The library is looked for at the path in the environment variable VELTRA_LIBRARY, then in the
folder of this package, then where the loader of the system looks. A library of another interface
than the package's, and none at all, is an ImportError.
"""
from ._library import LIBRARY_PATH, library_version
from ._version import __version__
from .byte_order import SwappedRecord, swap, swap_fields, swap_in_place, swap_record, swap_samples
from .channels import (Channel, SurroundFormat, angle, channel_label, channel_order, channels_of,
                       core_audio_label, format_of_layout)
from .checksums import crc16, crc32
from .kernels import kernels_in_force, use_kernel
from .levels import (LevelBallistics, amplitude_to_decibels, amplitude_to_position,
                     decibels_to_position, position_to_decibels)
from .midi import MIDIStyle, midi_text, note_name
from .musical_time import TICKS_PER_BEAT, MusicalContext
from .samples import SampleFormat, from_float, to_float
from .text import utf8_check, utf8_cut, utf8_is_ascii
from .transients import Transient, Transients

__all__ = [
    "Channel", "LIBRARY_PATH", "LevelBallistics", "MIDIStyle", "MusicalContext", "SampleFormat",
    "SurroundFormat", "SwappedRecord", "TICKS_PER_BEAT", "Transient", "Transients", "__version__",
    "amplitude_to_decibels", "amplitude_to_position", "angle", "channel_label", "channel_order",
    "channels_of", "core_audio_label", "crc16", "crc32", "decibels_to_position", "format_of_layout",
    "from_float", "kernels_in_force", "library_version", "midi_text", "note_name",
    "position_to_decibels", "swap", "swap_fields", "swap_in_place", "swap_record", "swap_samples",
    "to_float", "use_kernel", "utf8_check", "utf8_cut", "utf8_is_ascii",
]
