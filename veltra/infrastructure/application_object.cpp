// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/application_object.h"

#include <atomic>

namespace veltra {

namespace {
constinit std::atomic<const Object*> current{nullptr};
}

void setApplicationObject(const Object* application) noexcept {
    current.store(application, std::memory_order_release);  // with applicationObject()
}

const Object* applicationObject() noexcept {
    return current.load(std::memory_order_acquire);  // with setApplicationObject()
}

}  // namespace veltra
