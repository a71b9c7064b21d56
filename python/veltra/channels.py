# SPDX-License-Identifier: MIT
"""Surround formats: their channels, what these are called and where they are heard."""
import enum
from ctypes import c_uint32
from typing import List, Optional

from ._buffers import in_32_bits
from ._library import library

_NO_DIRECTION = 1000.0


class SurroundFormat(enum.IntEnum):
    """The formats that hosts mix in."""
    MONO = 1
    STEREO = 2
    QUADRAPHONIC = 3
    LCRS = 4
    SURROUND_51 = 5
    SURROUND_61 = 6
    SURROUND_71_MID = 7
    SURROUND_71_CENTRE = 8


class Channel(enum.IntEnum):
    """A channel of a surround format."""
    LEFT = 0
    RIGHT = 1
    LEFT_MID = 2
    RIGHT_MID = 3
    LEFT_SURROUND = 4
    RIGHT_SURROUND = 5
    CENTRE_SURROUND = 6
    CENTRE = 7
    LFE = 8
    LEFT_CENTRE = 9
    RIGHT_CENTRE = 10


def _number(value: int) -> int:
    return in_32_bits("number", value, lowest=0)


def channels_of(surround_format: int) -> List[Channel]:
    """The channels that a format holds; none for an unknown one."""
    mask = library.GetChannelIDBitMask(_number(surround_format))
    return [channel for channel in Channel if mask >> channel & 1]


def channel_label(channel: int) -> str:
    """The short name of a channel, "L" to "Rc"; empty for an unknown one."""
    return library.GetChannelLabel(_number(channel)).decode()


def angle(surround_format: int, channel: int) -> Optional[float]:
    """The direction of a channel in degrees, 0 ahead, negative left; None for LFE, which has none.

    0 for a channel that the format does not hold.
    """
    degrees = library.GetAngleForChannel(_number(surround_format), _number(channel))
    return None if degrees == _NO_DIRECTION else degrees


def channel_order(surround_format: int, layout_tag: int = 0) -> Optional[List[Channel]]:
    """The channels of a format in the order of one of Core Audio's layout tags, or in its own.

    None when the tag is not one of the format's.
    """
    mapping = (c_uint32 * 8)()
    if not library.GetMappingForFormatAndAudioChannelLayoutTag(
            _number(surround_format), _number(layout_tag), mapping):
        return None
    count = layout_tag & 0xFFFF if layout_tag else len(channels_of(surround_format))
    return [Channel(channel) for channel in mapping[:count]]


def format_of_layout(layout_tag: int) -> Optional[SurroundFormat]:
    """The format that a layout tag stands for; None for a tag that stands for none."""
    found = library.FindFormatForAudioChannelLayoutTag(_number(layout_tag), None)
    return SurroundFormat(found) if found else None


def core_audio_label(surround_format: int, channel: int) -> int:
    """Core Audio's label of a channel; 100 where no label applies."""
    return library.GetLabelForChannelID(_number(surround_format), _number(channel))
