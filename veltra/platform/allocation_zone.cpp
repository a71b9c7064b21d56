// SPDX-License-Identifier: MIT
#include "veltra/platform/allocation_zone.h"

#include "veltra/base/installable_source.h"

namespace veltra {

template <>
struct OwnImplementation<AllocationZone> : OwnFrom<AllocationZone::process> {};
template class Installable<AllocationZone>;

}  // namespace veltra
