// SPDX-License-Identifier: MIT
#include "veltra/version.h"

#define VELTRA_TEXT_OF(number) #number
#define VELTRA_TEXT(number) VELTRA_TEXT_OF(number)

namespace veltra {

const char* VeltraVersion() noexcept {
    return VELTRA_TEXT(VELTRA_VERSION_MAJOR) "." VELTRA_TEXT(VELTRA_VERSION_MINOR) "." VELTRA_TEXT(
        VELTRA_VERSION_PATCH);
}

}  // namespace veltra
