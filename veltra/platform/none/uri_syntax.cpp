// SPDX-License-Identifier: MIT
#include "veltra/platform/uri_syntax.h"

namespace veltra {

bool isUriReference(const char*) noexcept {
    return false;
}

}  // namespace veltra
