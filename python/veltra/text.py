# SPDX-License-Identifier: MIT
"""UTF-8 as bytes: checking, and cutting without splitting a character."""
import ctypes
from typing import Union

from ._library import library


def without_nul(text: Union[str, bytes]) -> bytes:
    data = text.encode() if isinstance(text, str) else memoryview(text).tobytes()
    if b"\0" in data:
        raise ValueError("a NUL in the text")
    return data


def utf8_check(data: bytes) -> bool:
    """Whether bytes are built like UTF-8: each lead byte with as many bytes as it announces.

    It looks at the structure alone; utf8_text.h says what it lets pass. ValueError for a NUL.
    """
    return library.utf8_check(without_nul(data)) == 1


def utf8_is_ascii(data: bytes) -> bool:
    """Whether no byte is 0x80 or above. ValueError for a NUL."""
    return library.utf8_is_ascii(without_nul(data), 0) == 1


def utf8_cut(text: Union[str, bytes], size: int) -> bytes:
    """As many whole characters as fit into `size` bytes. ValueError for a NUL."""
    data = without_nul(text)
    if size < 0:
        raise ValueError(f"{size} bytes")
    longest = 6  # bytes that a lead byte may announce
    field = ctypes.create_string_buffer(min(size, len(data) + longest - 1) + 1)
    library.utf8_strlcpy(field, data, len(field))
    return field.value
