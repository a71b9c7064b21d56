# SPDX-License-Identifier: MIT
"""Buffers of Python as addresses for C, and arrays of floats with numpy or without."""
import ctypes
from array import array
from ctypes import c_char, c_void_p
from typing import TYPE_CHECKING, Any, Iterable, Sequence, Tuple, Union

try:
    import numpy
except ImportError:
    numpy = None  # type: ignore[assignment]

if TYPE_CHECKING:
    from numpy.typing import NDArray
    BytesLike = Union[bytes, bytearray, memoryview, array[Any], NDArray[Any]]
    Floats = Union[Sequence[float], Iterable[float], NDArray[Any]]
    FloatArray = Union[array[float], NDArray[Any]]
    FloatArrays = Union[Tuple[array[float], ...], NDArray[Any]]


def readable(data: "BytesLike") -> "tuple[Any, int]":
    """An argument for a pointer, which keeps the buffer alive, and its number of bytes. It is a
    copy where ctypes cannot tell an address: of what may not be written to, or is in pieces."""
    if isinstance(data, bytes):
        return data, len(data)
    with memoryview(data) as view:
        if view.readonly or not view.c_contiguous or view.nbytes == 0:
            return view.tobytes(), view.nbytes
    return writable(data)


def writable(data: "BytesLike") -> "tuple[Any, int]":
    """The same for a buffer that is changed in place."""
    with memoryview(data) as view:
        if view.readonly:
            raise TypeError("the buffer cannot be written to")
        if not view.c_contiguous:
            raise ValueError("the buffer is not in one piece")
        size = view.nbytes
    return (c_char * size).from_buffer(data) if size else b"", size


def copy_of(data: "BytesLike") -> "ctypes.Array[c_char]":
    """A copy to change; its `raw` is the result."""
    with memoryview(data) as view:
        return (c_char * view.nbytes).from_buffer_copy(view.tobytes())


def row_of(samples: "Floats") -> "FloatArray":
    """The samples of a channel as 32-bit floats in one piece."""
    holds_bytes = isinstance(samples, memoryview) and samples.format in ("B", "b", "c")
    if holds_bytes or isinstance(samples, (str, bytes, bytearray)):
        raise TypeError("a channel is a row of floats, not text or bytes")
    if numpy is not None:
        if not (hasattr(samples, "__len__") and hasattr(samples, "__getitem__")):
            samples = list(samples)
        values = numpy.asarray(samples)
        if values.ndim != 1:
            raise ValueError("a channel is one row of samples")
        if values.dtype.kind == "O":  # fractions, for example
            values = numpy.asarray(array("d", values))
        if values.dtype.kind not in "biuf":
            raise TypeError("a channel is a row of numbers")
        return numpy.ascontiguousarray(values, dtype=numpy.float32)
    if isinstance(samples, array) and samples.typecode == "f":
        return samples
    return array("f", samples)


def pointer_to(row: "FloatArray") -> "Any":
    """An argument for a pointer to the floats of a row, which keeps them alive."""
    return row.ctypes.data_as(c_void_p) if numpy is not None else writable(row)[0]


def new_rows(channels: int, count: int) -> "tuple[FloatArrays, list[Any]]":
    """Rows of 32-bit floats to fill, and the arguments for pointers to them."""
    if numpy is not None:
        rows: "FloatArrays" = numpy.empty((channels, count), dtype=numpy.float32)
    else:
        rows = tuple(array("f", bytes(4 * count)) for _ in range(channels))
    return rows, [pointer_to(row) for row in rows]


def apart(stream: "FloatArray", channels: int) -> "FloatArrays":
    """Interleaved floats as a row for each channel."""
    if numpy is not None:
        return numpy.ascontiguousarray(stream.reshape(-1, channels).T)
    return tuple(stream[channel::channels] for channel in range(channels))


def interleaved(rows: "Sequence[FloatArray]") -> "FloatArray":
    """The rows of several channels as one stream. They have one length."""
    if numpy is not None:
        return numpy.stack(rows, axis=1).ravel()
    stream = array("f", bytes(4 * len(rows) * len(rows[0])))
    for channel, row in enumerate(rows):
        stream[channel::len(rows)] = row
    return stream


def in_32_bits(name: str, value: int, lowest: int = -(1 << 31)) -> int:
    """The value, or an OverflowError where C would cut it off."""
    if not lowest <= value < lowest + (1 << 32):
        raise OverflowError(f"{name} {value} does not fit in 32 bits")
    return value
