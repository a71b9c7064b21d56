// SPDX-License-Identifier: MIT
// Colours that look the same in every product: an RGB and a grey space with fixed meanings, spaces
// of ICC profiles, and colours in them as small values.
//
// The RGB space is that of the framework's own profile, which is part of the library: the primaries
// and white of sRGB with a gamma of 1.8. What draws here speaks sRGB, so a colour is converted when
// it is drawn; until then it keeps its space and its components as they were given.
//
// Spaces live as long as the process. Each is made once, so that equal spaces have equal addresses;
// nothing is to be released.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// A colour space; callers only ever hold pointers to one.
typedef struct VLColorSpace VLColorSpace;

// A colour. Without a space it is no colour; every function accepts it and returns no colour, or
// what it says for this case.
typedef struct VLColor {
    const VLColorSpace* space;  // null: none
    float components[3];        // red, green, blue; or the white and two zeros
    float alpha;                // straight; 0 is transparent, 1 opaque
} VLColor;

// A colour as it is drawn: sRGB with straight alpha, each number from 0 to 1.
typedef struct VLSrgbColor {
    float red;    // in the encoding of sRGB, not multiplied by alpha
    float green;  // likewise
    float blue;   // likewise
    float alpha;  // 0 is transparent, 1 opaque
} VLSrgbColor;

// The space of the framework's own profile, "VLGenericRGBProfile.icc". Never null: without Little
// CMS (VELTRA_LCMS), and when memory is out at the first call, a formula stands for the profile.
// The two names stand for one and the same space.
// Thread: any. Realtime-safe: no (the first call reads the profile).
VELTRA_EXPORT const VLColorSpace* VLGetCalibratedRGB_CGColorSpace(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT const VLColorSpace* VLGetCalibratedRGB_NSColorSpace(void) VELTRA_NOEXCEPT;

// The shared grey space. Never null. The first call chooses it. Where isSnowLeopardOrNewer()
// returns true, it is the grey of the device: the white is used for each of the three numbers of
// sRGB. Elsewhere, as on Linux before release 10, it has a gamma of 1.8 and the white point of
// sRGB.
// Thread: any. Realtime-safe: no (the first call asks the system).
VELTRA_EXPORT const VLColorSpace* VLGetCalibratedWhiteColorSpace(void) VELTRA_NOEXCEPT;

// The intent with which colours of the user interface are converted: always 3, perceptual. (The
// profiles themselves have another number for it, 0.)
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT int32_t VLGetUIRenderingIntent(void) VELTRA_NOEXCEPT;

// The space of the profile in the resource file `name`, which includes the extension: the
// framework's own profile, or a file in the resource folders. A file is read once; later changes of
// it have no effect. The framework's own profile gives the shared space above, never null. Returns
// null for a null name and one with "/" in it; when there is no such file; when the file has more
// than 1 MiB or is no intact profile of RGB or grey; in a library without Little CMS (VELTRA_LCMS);
// and when memory is out. The two functions do the same.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT const VLColorSpace* VLCreateCGColorSpaceFromResource(const VLString* name)
    VELTRA_NOEXCEPT;
VELTRA_EXPORT const VLColorSpace* VLCreateNSColorSpaceFromResource(const VLString* name)
    VELTRA_NOEXCEPT;

// How many components a colour of this space has: 3 or 1; 0 for null.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT uint32_t VLColorSpaceComponentCount(const VLColorSpace* space) VELTRA_NOEXCEPT;

// Colours in the shared spaces. The numbers are kept as they are given.
// Thread: any. Realtime-safe: no (see the spaces).
VELTRA_EXPORT VLColor VLCreateRGBColor(float red, float green, float blue,
                                       float alpha) VELTRA_NOEXCEPT;
VELTRA_EXPORT VLColor VLCreateWhiteColor(float white, float alpha) VELTRA_NOEXCEPT;

// Whether both have the same space, components and alpha. Of a grey space only the first component
// counts; colours without a space are all equal.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT bool VLColorIsEqual(VLColor left, VLColor right) VELTRA_NOEXCEPT;

// The colour in sRGB. What lies outside of sRGB is clipped, here and nowhere before. Components and
// alpha below 0 count as 0, those above 1 as 1, and NaN as 0. A colour without a space becomes
// transparent black.
// Thread: any. Realtime-safe: yes in the grey space and in none; no promise in those of profiles.
VELTRA_EXPORT VLSrgbColor VLColorToSrgb(VLColor color) VELTRA_NOEXCEPT;

VELTRA_C_END
