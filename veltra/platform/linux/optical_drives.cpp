// SPDX-License-Identifier: MIT
#include "veltra/platform/optical_drives.h"

#include "veltra/base/immortal.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/linux/optical_drive_lists.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

namespace veltra {

namespace {

class LinuxOpticalDrives final : public OpticalDrives {
public:
    std::vector<OpticalDrive> list() noexcept override {
        const NoCancellation whileFilesAreRead;
        return unlessOutOfMemory(std::vector<OpticalDrive>(), [] {
            std::vector<OpticalDrive> drives = drivesOfDeviceManager();
            if (!drives.empty()) return drives;
            return drivesOfKernel("/sys/class/block", "/proc/sys/dev/cdrom/info");
        });
    }
};

}  // namespace

OpticalDrives& platformOpticalDrives() noexcept {
    static const Immortal<LinuxOpticalDrives> drives;
    return *drives;
}

}  // namespace veltra
