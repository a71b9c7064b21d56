// SPDX-License-Identifier: MIT
// The version, of these headers and of the library that is loaded. Versions follow
// major.minor.patch; while major is 0, a minor version may change interfaces, and a patch version
// never does. Major and minor are part of the library's soname, so that a program is never started
// with another interface than it was built for.
#pragma once

#include "veltra/c_linkage.h"

// Of these headers.
#define VELTRA_VERSION_MAJOR 0
#define VELTRA_VERSION_MINOR 1
#define VELTRA_VERSION_PATCH 0

// The same as one number that grows with each version, for conditions: 1.2.3 is 10203.
#define VELTRA_VERSION \
    (VELTRA_VERSION_MAJOR * 10000 + VELTRA_VERSION_MINOR * 100 + VELTRA_VERSION_PATCH)

VELTRA_C_BEGIN

// The version of the library that is loaded, such as "0.1.0". Never null; lives as long as the
// process.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT const char* VeltraVersion(void) VELTRA_NOEXCEPT;

VELTRA_C_END
