// SPDX-License-Identifier: MIT
// For C and every language that can call it: which variant of the library's kernels runs (kernels.h
// in C++), and which of the host's own loops should (dot_api.h in C++).
//
//     for (uint32_t family = 0; family < VLKernelFamilyCount(); ++family) {
//         const char* name = VLKernelFamilyName(family);
//         printf("%s runs as %s\n", name, VLKernelFamilyInForce(name));
//     }
//     VLKernelFamilyUse("crc32", "plain");   // to compare, in a test or a bug report
//     VLKernelFamilyUse("crc32", NULL);      // the best one again
//
//     char text[256];
//     VLKernelsInForce(text, sizeof text);   // "crc16 plain, crc32 pclmulqdq, ..."
//
// Texts that are returned are constants.
// Thread: any. Of VLDotAPISetDebugMode, VLDotAPIInit, VLDotAPISetSelection and VLDotAPIOverride,
// one at a time. Realtime-safe: yes, but for VLKernelsPrepare.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// How many families of kernels there are, and the name of one; null from the count on.
VELTRA_EXPORT uint32_t VLKernelFamilyCount(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT const char* VLKernelFamilyName(uint32_t index) VELTRA_NOEXCEPT;

// The variants of a family, best first; the last is "plain" and runs everywhere. A family that
// there is not, and a null name, have no variants; the name of a variant from the count on is null.
VELTRA_EXPORT uint32_t VLKernelVariantCount(const char* family) VELTRA_NOEXCEPT;
VELTRA_EXPORT const char* VLKernelVariantName(const char* family, uint32_t index) VELTRA_NOEXCEPT;

// Whether the processor runs that variant; false from the count on.
VELTRA_EXPORT bool VLKernelVariantRuns(const char* family, uint32_t index) VELTRA_NOEXCEPT;

// The name of the variant that calls of the family go to; null for a family that there is not.
VELTRA_EXPORT const char* VLKernelFamilyInForce(const char* family) VELTRA_NOEXCEPT;

// Sends the calls of the family to that variant; null stands for the best one that runs here.
// Returns false and changes nothing when there is no such family or variant, or when the processor
// does not run it. All variants give the same results, so that this may happen at any time.
VELTRA_EXPORT bool VLKernelFamilyUse(const char* family, const char* variant) VELTRA_NOEXCEPT;

// Writes what every family runs as, cut to `capacity` bytes with a NUL. Returns the length of the
// whole text without its NUL. With `capacity` 0 or a null `text` nothing is written.
VELTRA_EXPORT size_t VLKernelsInForce(char* text, size_t capacity) VELTRA_NOEXCEPT;

// Runs what is in force beside the plain variants on a few KiB. A family whose results differ, as
// on a machine that is broken, goes on with the best of its slower variants that does agree, and a
// line of the log says so. Returns whether all results were the same.
// Realtime-safe: no. It takes a few milliseconds at most.
VELTRA_EXPORT bool VLKernelsPrepare(void) VELTRA_NOEXCEPT;

// The variants of the host's own loops: the values of CDotAPI::EID.
enum VLDotAPIVariant {
    kVLDotAPISSE = 0,
    kVLDotAPISSE3 = 1,
    kVLDotAPISSEAlt = 2,
    kVLDotAPIAltiVecG4 = 3,
    kVLDotAPIAltiVecG5 = 4,
    kVLDotAPIOff = 5,
    kVLDotAPIDebug = 6
};

// Each calls the member of CDotAPI of that name; dot_api.h describes them.
VELTRA_EXPORT void VLDotAPISetDebugMode(bool debug) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLDotAPIInit(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIProcessorID(void) VELTRA_NOEXCEPT;  // the variant of the processor
VELTRA_EXPORT int32_t VLDotAPIID(void) VELTRA_NOEXCEPT;           // the variant in force
VELTRA_EXPORT uint32_t VLDotAPIMenuEntries(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT const char* VLDotAPIMenuText(int32_t position) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIMenuID(int32_t position) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIGetSelection(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLDotAPISetSelection(int32_t position) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIOverride(int32_t variant) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIInterleave(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLDotAPIMaxInterleave(void) VELTRA_NOEXCEPT;

VELTRA_C_END
