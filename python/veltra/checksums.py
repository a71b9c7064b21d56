# SPDX-License-Identifier: MIT
"""Checksums of file formats and protocols."""
from typing import TYPE_CHECKING, Union

from ._buffers import in_32_bits, readable
from ._library import library
from .text import without_nul

if TYPE_CHECKING:
    from ._buffers import BytesLike


def crc32(data: "BytesLike", previous: int = 0) -> int:
    """The CRC-32 of zlib and PNG; `previous` is the result for the data in front, if any."""
    source, size = readable(data)
    in_32_bits("previous", previous, lowest=0)
    return library.QKCRC32(previous, source, size) if size else previous


def crc16(text: Union[str, bytes]) -> int:
    """The CRC-16/AUG-CCITT of a text of at most 65536 bytes; a str counts as UTF-8.

    ValueError when it is longer, or holds a NUL.
    """
    data = without_nul(text)
    if len(data) > 65536:
        raise ValueError("a text of more than 65536 bytes")
    return library.QKCRC16(data)
