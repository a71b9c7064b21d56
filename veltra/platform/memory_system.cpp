// SPDX-License-Identifier: MIT
#include "veltra/platform/memory_system.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

template <>
struct OwnImplementation<MemorySystem> : OwnFrom<platformMemorySystem> {};
template class Installable<MemorySystem>;

MemorySystem::~MemorySystem() = default;

}  // namespace veltra
