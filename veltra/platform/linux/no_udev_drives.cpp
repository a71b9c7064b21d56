// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/optical_drive_lists.h"

namespace veltra {

std::vector<OpticalDrive> drivesOfDeviceManager() {
    return {};
}

}  // namespace veltra
