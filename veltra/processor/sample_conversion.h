// SPDX-License-Identifier: MIT
// Conversion between the sample streams of audio files and the 32-bit float samples that are
// processed. A converter is looked up once per file or buffer, never per sample.
//
//     ConvertNToFloatProc convert = GetConvertNToFloat(kVLSampleInt24, false);
//     convert(left, fileBytes, frames, right);
//
// The integer formats are two's complement, big-endian when not swapped and little-endian when
// swapped, on every host. Only the swapped 8-bit format is unsigned, with 128 for silence. The
// float formats are the host's own floats, swapped or not: a file of the other byte order goes
// through PSwapLong or PSwapLongLong (byte_order.h) first.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

enum VLSampleFormat {
    kVLSampleInt8 = 1,
    kVLSampleInt16 = 2,
    kVLSampleInt24 = 3,  // packed, 3 bytes a sample
    kVLSampleInt32 = 4,
    kVLSampleFloat32 = -4,
    kVLSampleFloat64 = -8  // one channel only, and not swapped
};

// From a stream to floats. Without `secondDestination` the stream has one channel and `count`
// is its number of samples. With it the stream is interleaved, `count` is the number of frames,
// and the samples of a frame go to `destination` and `secondDestination` in that order, `count`
// each. kVLSampleInt32 and kVLSampleFloat64 have one channel only and ignore
// `secondDestination`.
//
// Integers of n bits become s / 2^(n-1), exactly: -1.0 up to just below 1.0. Of 32 bits the
// lowest eight are dropped, rounding down. 64-bit floats are rounded to the nearest 32-bit float,
// ties to even.
//
// No result depends on the thread's rounding mode, on whether it flushes denormals to zero, or on
// the processor's variant.
//
// No buffer need be aligned. `destination` may be `source`, when it has room for the floats:
//   one channel                   converts in place
//   two channels of 8 or 16 bits  converts in place, with `secondDestination` elsewhere
//   two channels of 24 bits       deliberately converts `count` samples in place as one channel
//                                 and leaves `secondDestination` as it is: frames split over
//                                 themselves would lose samples
//   two channels of 32-bit float  does nothing
// Other overlaps are for no converter. A null `destination` or `source` does nothing.
// Thread: any; a pure function of its buffers. Realtime-safe: yes.
typedef void (*ConvertNToFloatProc)(float* destination, const void* source, size_t count,
                                    float* secondDestination) VELTRA_NOEXCEPT;

// From floats to a stream, the other way round: with `secondSource`, `count` frames are
// interleaved from `source` and `secondSource`. kVLSampleFloat64 has one channel only and ignores
// `secondSource`.
//
// Integers are the top bits of |x| * 2^31, truncated, with the sign of x. The narrow formats
// therefore round down, and a negative x too small for them gives -1. What lies at or beyond
// 1.0 or -1.0, infinities and NaNs (by their sign bit) too, becomes 0x7FFFFF00 or its negative,
// so that 1.0 and -1.0 give
//    8 bits  127, -128            16 bits  32767, -32768
//   24 bits  8388607, -8388607    32 bits  2147483392, -2147483392
// Deliberate: other rounding would change the bytes of every file that is rendered again.
//
// No buffer need be aligned, and no byte past the last sample is written. `destination` may be
// `source`, when it has room for the stream: every format converts in place, with one channel
// and with two (`secondSource` elsewhere), but two channels of kVLSampleFloat32 do nothing.
// Other overlaps are for no converter. A null `destination` or `source` does nothing.
// Thread: any; a pure function of its buffers. Realtime-safe: yes.
typedef void (*ConvertFloatToNProc)(void* destination, const float* source, size_t count,
                                    const float* secondSource) VELTRA_NOEXCEPT;

// The converter of a VLSampleFormat. For a format that does not exist (swapped kVLSampleFloat64 is
// one) it is a converter that does nothing and leaves the destination as it is; never null. It
// stays with the variant (kernels.h; families "samples" and "float64") that is in force when it is
// looked up.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT ConvertNToFloatProc GetConvertNToFloat(int32_t format, bool swapped) VELTRA_NOEXCEPT;
VELTRA_EXPORT ConvertFloatToNProc GetConvertFloatToN(int32_t format, bool swapped) VELTRA_NOEXCEPT;

VELTRA_C_END

#ifdef __cplusplus
namespace veltra {

// The same by the names that need no prefix here.
using SampleFormat = VLSampleFormat;
inline constexpr SampleFormat kSampleInt8 = kVLSampleInt8;
inline constexpr SampleFormat kSampleInt16 = kVLSampleInt16;
inline constexpr SampleFormat kSampleInt24 = kVLSampleInt24;
inline constexpr SampleFormat kSampleInt32 = kVLSampleInt32;
inline constexpr SampleFormat kSampleFloat32 = kVLSampleFloat32;
inline constexpr SampleFormat kSampleFloat64 = kVLSampleFloat64;

}  // namespace veltra
#endif
