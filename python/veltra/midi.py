# SPDX-License-Identifier: MIT
"""MIDI data values as text."""
import ctypes
import enum

from ._buffers import in_32_bits
from ._library import library


class MIDIStyle(enum.IntEnum):
    """How a value is written."""
    DECIMAL = 0
    SIGNED = 1
    HEXADECIMAL = 2
    NOTE_NAME = 3


def midi_text(value: int, style: int = MIDIStyle.DECIMAL) -> str:
    """A value of 32 bits as text: "5", "+5", "0x05" or "F-2"."""
    text = ctypes.create_string_buffer(32)
    library.VLMIDIText(in_32_bits("value", value), MIDIStyle(style), text, len(text))
    return text.value.decode()


def note_name(note: int) -> str:
    """The name of a note number: "C3" for 60, with sharps."""
    return midi_text(note, MIDIStyle.NOTE_NAME)
