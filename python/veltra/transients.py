# SPDX-License-Identifier: MIT
"""Transients, the onsets that a detector found in a signal, and lists of them."""
import ctypes
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Union

from . import _buffers
from ._buffers import readable
from ._library import TransientRecord, library

if TYPE_CHECKING:
    from ._buffers import BytesLike

_SIZE = ctypes.sizeof(TransientRecord)


class Transient(TransientRecord):
    """One transient: pos, energy, visible_weight, freq_hz, and the host's reserved words."""

    def __init__(self, pos: int = 0, energy: float = 1.0, freq_hz: float = 0.0,
                 visible_weight: float = 1.0) -> None:
        super().__init__(pos=pos, energy=energy, visible_weight=visible_weight, freq_hz=freq_hz)

    def __eq__(self, other: object) -> bool:
        return bytes(self) == bytes(other) if isinstance(other, TransientRecord) else NotImplemented

    __hash__ = None  # type: ignore[assignment]  # its fields can be set

    def __repr__(self) -> str:
        text = ctypes.create_string_buffer(256)
        library.VLTransientText(ctypes.byref(self), text, len(text))
        return text.value.decode()


def _record(transient: TransientRecord) -> bytes:
    if not isinstance(transient, TransientRecord):
        raise TypeError(f"{transient!r} is no transient")
    return bytes(transient)


class Transients:
    """A list of transients, as records of 36 bytes one behind the other.

    Made from transients, or from records: bytes, or an array of numpy with the type
    Transients.dtype(). The sorts are stable. For one thread at a time.
    """

    def __init__(self, transients: Union[Iterable[Transient], "BytesLike"] = ()) -> None:
        self._records = bytearray()
        if _buffers.numpy is not None and isinstance(transients, _buffers.numpy.ndarray):
            kind = transients.dtype
            if kind.itemsize > 1 and kind != self.dtype():
                raise TypeError(f"records of the type {kind}, not of Transients.dtype()")
        try:
            memoryview(transients)  # type: ignore[arg-type]
        except TypeError:
            self._records += b"".join(map(_record, transients))
        else:
            data, size = readable(transients)  # type: ignore[arg-type]
            if size % _SIZE:
                raise ValueError(f"{size} bytes are no whole number of records of {_SIZE}")
            self._records += data if isinstance(data, bytes) else data.raw

    @staticmethod
    def dtype() -> Any:
        """The record as a type of numpy, which must be installed."""
        if _buffers.numpy is None:
            raise ImportError("numpy is not installed")
        return _buffers.numpy.dtype([
            ("pos", "=i8"), ("energy", "=f4"), ("reserved3", "=u4"), ("visible_weight", "=f4"),
            ("reserved5to7", "=u4", (3,)), ("freq_hz", "=f4")])

    def to_numpy(self) -> Any:
        """A copy of the records as an array of numpy."""
        dtype = self.dtype()
        return _buffers.numpy.frombuffer(bytes(self), dtype=dtype).copy()

    def append(self, transient: Transient) -> None:
        self._records += _record(transient)

    def __len__(self) -> int:
        return len(self._records) // _SIZE

    def __getitem__(self, index: int) -> Transient:
        """A copy: to change a transient, put it back."""
        return Transient.from_buffer_copy(self._records, self._offset(index))

    def __setitem__(self, index: int, transient: Transient) -> None:
        offset = self._offset(index)
        self._records[offset:offset + _SIZE] = _record(transient)

    def __iter__(self) -> Iterator[Transient]:
        return (self[index] for index in range(len(self)))

    def __eq__(self, other: object) -> bool:
        return self._records == other._records if isinstance(other, Transients) else NotImplemented

    __hash__ = None  # type: ignore[assignment]

    def __bytes__(self) -> bytes:
        return bytes(self._records)

    def __repr__(self) -> str:
        return f"Transients({list(self)})"

    def is_sorted(self) -> bool:
        """Whether each position is at most the next."""
        return self._call(library.VLTransientsAreSortedByPos)

    def is_unique_and_sorted(self) -> bool:
        """Whether each position is less than the next."""
        return self._call(library.VLTransientsAreUniqueAndSortedByPos)

    def sort(self) -> None:
        """By position."""
        self._call(library.VLTransientsSortByPos)

    def sort_by_energy(self) -> None:
        """The weakest first, of equal energies the lowest position first; NaN comes last."""
        self._call(library.VLTransientsSortByEnergyAndPos)

    def sort_and_make_unique(self) -> None:
        """By position, and keeps the first transient at each."""
        self._keep(self._call(library.VLTransientsSortAndMakeUniquePos))

    def thin_out(self, size: int) -> None:
        """Keeps the `size` weakest, and sorts by position."""
        if size < 0:
            raise ValueError(f"a size of {size}")
        self._keep(self._call(library.VLTransientsThinOutToSizeAndSortByPos, min(size, len(self))))

    def _offset(self, index: int) -> int:
        if not -len(self) <= index < len(self):
            raise IndexError(f"transient {index} of {len(self)}")
        return index % len(self) * _SIZE

    def _call(self, function: Any, *more: int) -> Any:
        buffer = (ctypes.c_char * len(self._records)).from_buffer(self._records)
        return function(buffer, len(self), *more)

    def _keep(self, count: int) -> None:
        del self._records[count * _SIZE:]
