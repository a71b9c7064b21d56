# SPDX-License-Identifier: MIT
"""Reversing the byte order of arrays, sample streams and records."""
import ctypes
from typing import TYPE_CHECKING, Iterable, NamedTuple

from ._buffers import copy_of, readable, writable
from ._library import library

if TYPE_CHECKING:
    from typing import Any

    from ._buffers import BytesLike

_SWAPS = {2: library.PSwapWord, 4: library.PSwapLong, 8: library.PSwapLongLong}
_PIECE = 1 << 30  # items that one call takes; a count of C has 32 bits


def _swap(buffer: "Any", size: int, width: int) -> None:
    if width not in _SWAPS:
        raise ValueError(f"groups of {width} bytes: 2, 4 or 8 can be swapped")
    items, rest = divmod(size, width)
    if rest:
        raise ValueError(f"{size} bytes are no whole number of groups of {width}")
    for start in range(0, items, _PIECE):
        _SWAPS[width](ctypes.byref(buffer, start * width), min(_PIECE, items - start))


def swap(data: "BytesLike", width: int) -> bytes:
    """The data with the bytes of each group of 2, 4 or 8 reversed."""
    copy = copy_of(data)
    _swap(copy, len(copy), width)
    return copy.raw


def swap_in_place(buffer: "BytesLike", width: int) -> None:
    """The same in a buffer that can be written to."""
    _swap(*writable(buffer), width)


def swap_samples(data: "BytesLike", bits: int) -> bytes:
    """A native sample stream as a swapped one, or back: samples of 8, 16, 24 or 32 bits.

    Those of 8 bits go from signed to unsigned, or back.
    """
    if bits not in (8, 16, 24, 32):
        raise ValueError(f"samples of {bits} bits")
    copy = copy_of(data)
    width = bits // 8
    samples, rest = divmod(len(copy), width)
    if rest:
        raise ValueError(f"{len(copy)} bytes are no whole number of samples of {bits} bits")
    for start in range(0, samples, _PIECE):
        library.ProcessSwapIntel(ctypes.byref(copy, start * width), min(_PIECE, samples - start), 0,
                                 bits)
    return copy.raw


class SwappedRecord(NamedTuple):
    """What swap_record() made of a record."""
    data: bytes
    taken: int  # bytes that the applied fields take
    is_whole: bool  # whether the whole table was applied


def swap_record(record: "BytesLike", table: "BytesLike") -> SwappedRecord:
    """A record with the fields reversed that a table of field codes lists (record_swap.h).

    Safe for records from outside: nothing beyond their end is touched, whatever record and table
    hold.
    """
    copy = copy_of(record)
    codes, count = readable(table)
    taken = ctypes.c_size_t()
    is_whole = library.SwapRecordWithin(copy, len(copy), codes, count, ctypes.byref(taken))
    return SwappedRecord(copy.raw, taken.value, is_whole)


def swap_fields(record: "BytesLike", sizes: Iterable[int]) -> bytes:
    """A record with fields of 2, 4 or 8 bytes reversed; a negative size keeps so many bytes.

    The first field that does not fit ends it. A size is -128 to 127 and not 0, or it is a
    ValueError.
    """
    description = list(sizes)
    if any(not -128 <= size <= 127 or size == 0 for size in description):
        raise ValueError("a size is -128 to 127 and not 0")
    copy = copy_of(record)
    fields = (ctypes.c_int8 * (len(description) + 1))(*description, 0)
    library.SwapData(copy, copy, fields, len(copy))
    return copy.raw
