# SPDX-License-Identifier: MIT
"""Sample streams of audio files to 32-bit floats and back, with the same bits on every processor."""
import ctypes
import enum
from typing import TYPE_CHECKING

from ._buffers import apart, interleaved, new_rows, pointer_to, readable, row_of
from ._library import library

if TYPE_CHECKING:
    from typing import Union

    from ._buffers import BytesLike, FloatArray, FloatArrays, Floats


class SampleFormat(enum.IntEnum):
    """Integers are two's complement, big-endian when not swapped and little-endian when swapped;
    only the swapped 8-bit format is unsigned. Floats are the host's own."""
    INT8 = 1
    INT16 = 2
    INT24 = 3
    INT32 = 4
    FLOAT32 = -4
    FLOAT64 = -8

    @property
    def size(self) -> int:
        """Bytes of a sample."""
        return abs(self)


# The library converts two channels of these in one go.
_IN_PAIRS = frozenset({SampleFormat.INT8, SampleFormat.INT16, SampleFormat.INT24,
                       SampleFormat.FLOAT32})


def _existing(sample_format: int, swapped: bool) -> SampleFormat:
    known = SampleFormat(sample_format)
    if known is SampleFormat.FLOAT64 and swapped:
        raise ValueError("there are no swapped 64-bit floats: swap() them first")
    return known


def to_float(data: "BytesLike", sample_format: int, *, swapped: bool = False,
             channels: int = 1) -> "Union[FloatArray, FloatArrays]":
    """The samples of a stream as floats: of integers exactly those from -1.0 to just below 1.0.

    Of 32-bit integers the lowest eight bits are dropped, and 64-bit floats are rounded.
    With one channel the result is one array, with more a row for each. ValueError when the bytes
    are no whole number of frames, or there is no such format.
    """
    known = _existing(sample_format, swapped)
    source, size = readable(data)
    if channels < 1:
        raise ValueError(f"{channels} channels")
    frames, rest = divmod(size, known.size * channels)
    if rest:
        raise ValueError(f"{size} bytes are no whole number of frames of {known.size * channels}")
    convert = library.GetConvertNToFloat(known, swapped)
    if channels == 2 and known in _IN_PAIRS:
        rows, (left, right) = new_rows(2, frames)
        convert(left, source, frames, right)
        return rows
    (stream,), (pointer,) = new_rows(1, frames * channels)
    convert(pointer, source, frames * channels, None)
    return stream if channels == 1 else apart(stream, channels)


def from_float(*channels: "Floats", sample_format: int, swapped: bool = False) -> bytes:
    """The stream of one channel, or of several interleaved.

    Samples at or beyond full scale become the largest integer that sample_conversion.h names for
    the format; floats stay as they are. Rows of several lengths are a ValueError, text and bytes a
    TypeError, rows of more than one dimension one of both.

        stream = from_float(left, right, sample_format=SampleFormat.INT24)
    """
    known = _existing(sample_format, swapped)
    if not channels:
        raise ValueError("no channel")
    convert = library.GetConvertFloatToN(known, swapped)
    rows = [row_of(row) for row in channels]
    count = len(rows[0])
    if any(len(row) != count for row in rows):
        raise ValueError("the channels have different lengths")
    stream = ctypes.create_string_buffer(known.size * count * len(rows))
    if len(rows) == 2 and known in _IN_PAIRS:
        convert(stream, pointer_to(rows[0]), count, pointer_to(rows[1]))
    else:
        samples = rows[0] if len(rows) == 1 else interleaved(rows)
        convert(stream, pointer_to(samples), len(samples), None)
    return stream.raw
