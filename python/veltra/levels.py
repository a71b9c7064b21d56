# SPDX-License-Identifier: MIT
"""How a level meter moves, and where it shows how many decibels."""
import time
from typing import NoReturn, Optional

from ._library import library

_SECOND = 1_000_000_000  # nanoseconds


def decibels_to_position(decibels: float) -> float:
    """Where a meter shows a level: 0 below -70 dB, 1 at 0 dB, more above."""
    return library.VLMeterPositionForDecibels(decibels)


def position_to_decibels(position: float) -> float:
    """The reverse; minus infinity at 0 and below."""
    return library.VLDecibelsForMeterPosition(position)


def amplitude_to_position(amplitude: float) -> float:
    """Where a meter shows an amplitude, 1 at full scale; its sign does not count."""
    return library.VLMeterPositionForAmplitude(amplitude)


def amplitude_to_decibels(amplitude: float) -> float:
    """Minus infinity for 0."""
    return library.VLDecibelsForAmplitude(amplitude)


class LevelBallistics:
    """A meter without a picture: up at once, down at a steady rate, with a held maximum and a clip
    light that stays on.

    Levels are positions, linear from 0 to 1 at full scale. `now` is in seconds, by any clock that
    does not go back; where it is not given, time.monotonic_ns() tells it. For one
    thread at a time.
    """

    def __init__(self, *, fall_back_step: Optional[float] = None,
                 fall_back_step_time: Optional[float] = None,
                 max_level_hold_time: Optional[float] = None) -> None:
        self._meter = library.VLLevelBallisticsCreate()
        if not self._meter:
            raise MemoryError
        if fall_back_step is not None:
            self.fall_back_step = fall_back_step
        if fall_back_step_time is not None:
            self.fall_back_step_time = fall_back_step_time
        if max_level_hold_time is not None:
            self.max_level_hold_time = max_level_hold_time

    def __del__(self) -> None:
        meter = getattr(self, "_meter", None)
        if meter:
            library.VLLevelBallisticsDestroy(meter)

    def __reduce__(self) -> NoReturn:
        # A copy would destroy the same meter a second time.
        raise TypeError("a LevelBallistics cannot be copied or pickled")

    @property
    def fall_back_step(self) -> float:
        """By how much the display falls per step time; 0: never."""
        return library.VLLevelBallisticsFallBackStep(self._meter)

    @fall_back_step.setter
    def fall_back_step(self, step: float) -> None:
        library.VLLevelBallisticsSetFallBackStep(self._meter, step)

    @property
    def fall_back_step_time(self) -> float:
        """Seconds; 0: the display falls at once; infinite: never."""
        return library.VLLevelBallisticsFallBackStepTime(self._meter)

    @fall_back_step_time.setter
    def fall_back_step_time(self, seconds: float) -> None:
        library.VLLevelBallisticsSetFallBackStepTime(self._meter, seconds)

    @property
    def max_level_hold_time(self) -> float:
        """Seconds; 0: a maximum is held until the next call; infinite: until drop_maximum()."""
        return library.VLLevelBallisticsMaxLevelHoldTime(self._meter)

    @max_level_hold_time.setter
    def max_level_hold_time(self, seconds: float) -> None:
        library.VLLevelBallisticsSetMaxLevelHoldTime(self._meter, seconds)

    def set_level(self, level: float, now: Optional[float] = None, *,
                  force_display: bool = False) -> bool:
        """A level that was measured at `now`. Returns whether to draw again."""
        return library.VLLevelBallisticsSetLevel(self._meter, level, force_display, _moment(now))

    def tick(self, now: Optional[float] = None) -> bool:
        """Lets the display fall to the level given last. Returns whether it goes on falling."""
        return library.VLLevelBallisticsTick(self._meter, _moment(now))

    @property
    def level(self) -> float:
        """What was given last."""
        return library.VLLevelBallisticsLevel(self._meter)

    @property
    def display_level(self) -> float:
        """What is shown."""
        return library.VLLevelBallisticsDisplayLevel(self._meter)

    @property
    def max_display_level(self) -> float:
        """The held maximum; 0: none is held."""
        return library.VLLevelBallisticsMaxDisplayLevel(self._meter)

    def drop_maximum(self) -> None:
        library.VLLevelBallisticsDropMaximum(self._meter)

    @property
    def peak(self) -> bool:
        """The clip light. It goes on when the display rises above 1, and goes off here only."""
        return library.VLLevelBallisticsPeak(self._meter)

    @peak.setter
    def peak(self, is_on: bool) -> None:
        library.VLLevelBallisticsSetPeak(self._meter, is_on)

    def time_to_tick(self, now: Optional[float] = None) -> Optional[float]:
        """Seconds until a tick is due; None when the display is at rest."""
        return _seconds(library.VLLevelBallisticsTimeToTick(self._meter, _moment(now)))

    def time_to_hold_end(self, now: Optional[float] = None) -> Optional[float]:
        """Seconds until the maximum has been held long enough; None without one."""
        return _seconds(library.VLLevelBallisticsTimeToHoldEnd(self._meter, _moment(now)))


def _moment(now: Optional[float]) -> int:
    if now is None:
        return time.monotonic_ns()
    nanoseconds = round(now * _SECOND)
    if not -(1 << 63) <= nanoseconds < 1 << 63:
        raise OverflowError(f"a time of {now} seconds")
    return nanoseconds


def _seconds(nanoseconds: int) -> Optional[float]:
    return nanoseconds / _SECOND if nanoseconds >= 0 else None
