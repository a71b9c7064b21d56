// SPDX-License-Identifier: MIT
// The two places that know about optical drives. Both raise std::bad_alloc.
#pragma once

#include "veltra/platform/optical_drives.h"

#include <string>
#include <vector>

namespace veltra {

// What the device manager's database says. Empty where no device manager runs (in containers), and
// in a build without libudev.
std::vector<OpticalDrive> drivesOfDeviceManager();

// What the kernel says. `blockFolder` has an entry for each block device; the file `kernelList` is
// a table with a column for each drive. It knows nothing of Blu-ray: such a drive reads DVDs, too.
std::vector<OpticalDrive> drivesOfKernel(const std::string& blockFolder,
                                         const std::string& kernelList);

}  // namespace veltra
