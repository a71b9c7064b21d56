// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/none/no_text_services.h"
#include "veltra/platform/port.h"

namespace veltra {

const TextServices& platformTextServices() noexcept {
    static const Immortal<NoTextServices> services;
    return *services;
}

}  // namespace veltra
