// SPDX-License-Identifier: MIT
#include "veltra/platform/no_cancellation.h"

#include <pthread.h>

namespace veltra {

NoCancellation::NoCancellation() noexcept {
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before);
}

NoCancellation::~NoCancellation() {
    ::pthread_setcancelstate(m_before, nullptr);
}

}  // namespace veltra
