# SPDX-License-Identifier: MIT
"""The loaded library, with the types of its functions declared."""
import ctypes
import os
from ctypes import (POINTER, c_bool, c_char_p, c_double, c_float, c_int, c_int8, c_int32, c_int64,
                    c_size_t, c_uint8, c_uint32, c_void_p)
from pathlib import Path
from typing import Iterator

from ._version import __version__


class _Record(ctypes.Structure):
    """Refuses numbers that a field would cut off."""

    def __setattr__(self, name: str, value: object) -> None:
        kind = dict(self._fields_).get(name)
        if kind in (c_int32, c_int64, c_uint32) and kind(value).value != value:
            raise OverflowError(f"{name} cannot hold {value}")
        super().__setattr__(name, value)


class MusicalContextRecord(_Record):
    """VLMusicalContext."""
    _fields_ = [(name, c_int32) for name in (
        "sample_position", "second", "tempo", "meter_numerator", "meter_denominator",
        "position_in_ticks", "position_in_bar_in_ticks", "samples_to_next_tick")] + [
            ("reserved", c_int32 * 4), ("last", c_uint32)]


class TransientRecord(_Record):
    """VLTransient: 36 bytes, packed to 4."""
    _layout_ = "ms"  # which _pack_ means; Python 3.14 wants it said
    _pack_ = 4
    _fields_ = [("pos", c_int64), ("energy", c_float), ("reserved3", c_uint32),
                ("visible_weight", c_float), ("reserved5to7", c_uint32 * 3), ("freq_hz", c_float)]


_FloatsFromStream = ctypes.CFUNCTYPE(None, c_void_p, c_void_p, c_size_t, c_void_p)
_meter = (c_void_p,)
_transients = (c_void_p, c_size_t)

# Name: result and arguments.
_FUNCTIONS = {
    "VeltraVersion": (c_char_p,),
    # processor
    "GetConvertNToFloat": (_FloatsFromStream, c_int32, c_bool),
    "GetConvertFloatToN": (_FloatsFromStream, c_int32, c_bool),
    "PSwapLongLong": (None, c_void_p, c_uint32),
    "PSwapLong": (None, c_void_p, c_uint32),
    "PSwapWord": (None, c_void_p, c_uint32),
    "ProcessSwapIntel": (c_bool, c_void_p, c_uint32, c_uint32, c_int32),
    "SwapRecordWithin": (c_bool, c_void_p, c_size_t, c_void_p, c_size_t, POINTER(c_size_t)),
    "SwapData": (None, c_void_p, c_void_p, POINTER(c_int8), c_size_t),
    "QKCRC16": (c_uint32, c_char_p),
    "QKCRC32": (c_uint32, c_uint32, c_void_p, c_size_t),
    "utf8_check": (c_int, c_char_p),
    "utf8_is_ascii": (c_int, c_char_p, c_size_t),
    "utf8_strlcpy": (c_void_p, c_void_p, c_char_p, c_size_t),
    "VLKernelFamilyCount": (c_uint32,),
    "VLKernelFamilyName": (c_char_p, c_uint32),
    "VLKernelFamilyInForce": (c_char_p, c_char_p),
    "VLKernelFamilyUse": (c_bool, c_char_p, c_char_p),
    # audio
    "GetChannelIDBitMask": (c_uint32, c_uint32),
    "GetChannelLabel": (c_char_p, c_uint32),
    "GetAngleForChannel": (c_float, c_uint32, c_uint32),
    "FindFormatForAudioChannelLayoutTag": (c_uint32, c_uint32, POINTER(c_uint32)),
    "GetMappingForFormatAndAudioChannelLayoutTag": (c_bool, c_uint32, c_uint32, POINTER(c_uint32)),
    "GetLabelForChannelID": (c_uint32, c_uint32, c_uint32),
    "VLMIDIText": (c_size_t, c_int32, c_int32, c_char_p, c_size_t),
    "VLMusicalContextMake": (MusicalContextRecord, c_int32, c_int32, c_void_p),
    "VLTransientText": (c_size_t, POINTER(TransientRecord), c_char_p, c_size_t),
    "VLTransientsAreSortedByPos": (c_bool, *_transients),
    "VLTransientsAreUniqueAndSortedByPos": (c_bool, *_transients),
    "VLTransientsSortByPos": (None, *_transients),
    "VLTransientsSortByEnergyAndPos": (None, *_transients),
    "VLTransientsSortAndMakeUniquePos": (c_size_t, *_transients),
    "VLTransientsThinOutToSizeAndSortByPos": (c_size_t, *_transients, c_size_t),
    # level meters
    "VLMeterPositionForDecibels": (c_float, c_double),
    "VLDecibelsForMeterPosition": (c_double, c_float),
    "VLMeterPositionForAmplitude": (c_float, c_float),
    "VLDecibelsForAmplitude": (c_double, c_float),
    "VLLevelBallisticsCreate": (c_void_p,),
    "VLLevelBallisticsDestroy": (None, *_meter),
    "VLLevelBallisticsFallBackStep": (c_float, *_meter),
    "VLLevelBallisticsSetFallBackStep": (None, *_meter, c_float),
    "VLLevelBallisticsFallBackStepTime": (c_double, *_meter),
    "VLLevelBallisticsSetFallBackStepTime": (None, *_meter, c_double),
    "VLLevelBallisticsMaxLevelHoldTime": (c_double, *_meter),
    "VLLevelBallisticsSetMaxLevelHoldTime": (None, *_meter, c_double),
    "VLLevelBallisticsSetLevel": (c_bool, *_meter, c_float, c_bool, c_int64),
    "VLLevelBallisticsTick": (c_bool, *_meter, c_int64),
    "VLLevelBallisticsLevel": (c_float, *_meter),
    "VLLevelBallisticsDisplayLevel": (c_float, *_meter),
    "VLLevelBallisticsMaxDisplayLevel": (c_float, *_meter),
    "VLLevelBallisticsDropMaximum": (None, *_meter),
    "VLLevelBallisticsPeak": (c_bool, *_meter),
    "VLLevelBallisticsSetPeak": (None, *_meter, c_bool),
    "VLLevelBallisticsTimeToTick": (c_int64, *_meter, c_int64),
    "VLLevelBallisticsTimeToHoldEnd": (c_int64, *_meter, c_int64),
}


def _interface(version: str) -> str:
    """Major and minor version, which the library's soname carries."""
    return ".".join(version.split(".")[:2])


def _places() -> Iterator[str]:
    given = os.environ.get("VELTRA_LIBRARY")
    if given:  # and no other: whoever names one wants to know when it is not that
        yield given
        return
    yield from sorted(map(str, Path(__file__).parent.glob("libveltra.so*")))
    yield f"libveltra.so.{_interface(__version__)}"
    yield "libveltra.so"


def _load() -> "tuple[ctypes.CDLL, str]":
    reasons = []
    for place in _places():
        try:
            library = ctypes.CDLL(place)
            _declare(library)
        except (OSError, AttributeError, ValueError) as error:
            reasons.append(f"{place}: {error}")
        else:
            return library, place
    raise ImportError("libveltra cannot be used. Install it, or set VELTRA_LIBRARY to its path. "
                      + "; ".join(reasons))


def _declare(library: ctypes.CDLL) -> None:
    for name, (result, *arguments) in _FUNCTIONS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    version = library.VeltraVersion().decode()
    if _interface(version) != _interface(__version__):
        raise ValueError(f"its version is {version}, and the package needs {__version__}")


library, LIBRARY_PATH = _load()


def library_version() -> str:
    """The version of the library that is loaded, such as "0.1.0"."""
    return library.VeltraVersion().decode()
