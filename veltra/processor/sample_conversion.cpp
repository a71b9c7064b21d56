#include "veltra/processor/sample_conversion.h"

#include "veltra/processor/detail/plain_conversion.h"

namespace veltra {

ConvertNToFloatProc GetConvertNToFloat(int32_t format, bool swapped) noexcept {
    return detail::plainConverters(format, swapped).toFloat;
}

ConvertFloatToNProc GetConvertFloatToN(int32_t format, bool swapped) noexcept {
    return detail::plainConverters(format, swapped).fromFloat;
}

}  // namespace veltra
