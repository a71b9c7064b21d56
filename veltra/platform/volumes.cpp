// SPDX-License-Identifier: MIT
#include "veltra/platform/volumes.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

template <>
struct OwnImplementation<Volumes> : OwnFrom<platformVolumes> {};
template class Installable<Volumes>;

Volumes::~Volumes() = default;

}  // namespace veltra
