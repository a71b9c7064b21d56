// SPDX-License-Identifier: MIT
#include "veltra/platform/optical_drives.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

template <>
struct OwnImplementation<OpticalDrives> : OwnFrom<platformOpticalDrives> {};
template class Installable<OpticalDrives>;

OpticalDrives::~OpticalDrives() = default;

}  // namespace veltra
