# SPDX-License-Identifier: MIT
"""Musical time at one sample position."""
from ._buffers import in_32_bits
from ._library import MusicalContextRecord, library

TICKS_PER_BEAT = 15360


class MusicalContext(MusicalContextRecord):
    """Tempo and musical position at a sample, as the 52 bytes that hosts exchange.

    The built-in calculator counts 120 beats a minute at 44,100 samples a second, four to the bar.
    Its fields: sample_position, second, tempo (thousandths of a beat per minute), meter_numerator,
    meter_denominator, position_in_ticks, position_in_bar_in_ticks (from the nearest bar line),
    samples_to_next_tick, reserved, last. bytes() of it are the record.
    """

    def __init__(self, sample_position: int, second: int = 0) -> None:
        made = library.VLMusicalContextMake(in_32_bits("sample_position", sample_position),
                                            in_32_bits("second", second), None)
        super().__init__(*(getattr(made, name) for name, *_ in self._fields_))

    @property
    def beats(self) -> float:
        """The position in beats."""
        return self.position_in_ticks / TICKS_PER_BEAT

    def __repr__(self) -> str:
        return (f"MusicalContext(sample_position={self.sample_position}, "
                f"position_in_ticks={self.position_in_ticks})")
