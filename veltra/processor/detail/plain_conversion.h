// The sample converters in plain C++. They run on every processor, and they are the judge of every
// faster variant.
#pragma once

#include "veltra/processor/sample_conversion.h"

#include <cstdint>

namespace veltra::detail {

struct SampleConverters {
    ConvertNToFloatProc toFloat;
    ConvertFloatToNProc fromFloat;
};

// Both converters of a format, by the rules of GetConvertNToFloat.
SampleConverters plainConverters(std::int32_t format, bool swapped) noexcept;

}  // namespace veltra::detail
