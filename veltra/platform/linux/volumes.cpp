// SPDX-License-Identifier: MIT
#include "veltra/platform/volumes.h"

#include "veltra/base/immortal.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/linux/mount_table.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/optical_drives.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>

namespace veltra {

namespace {

// Mounts are told apart by their number, not by paths or devices: a folder may be mounted twice,
// and several file systems may share a device.
std::optional<std::uint64_t> mountNumberOf(const std::string& path) noexcept {
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, STATX_MNT_ID, &status) != 0 ||
        (status.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    return status.stx_mnt_id;
}

bool isOfOpticalDrive(const std::string& device) {
    const std::vector<OpticalDrive> drives = OpticalDrives::current().list();
    return std::any_of(drives.begin(), drives.end(), [&device](const OpticalDrive& drive) {
        return device == "/dev/" + drive.deviceName;
    });
}

class LinuxVolumes final : public Volumes {
public:
    std::optional<Volume> volumeOfPath(const std::string& path) noexcept override {
        const NoCancellation whileFilesAreRead;
        return unlessOutOfMemory(std::optional<Volume>(), [&]() -> std::optional<Volume> {
            const std::optional<std::uint64_t> number = mountNumberOf(path);
            if (!number) return std::nullopt;
            std::ifstream file("/proc/self/mountinfo", std::ios::binary);
            const std::string table((std::istreambuf_iterator<char>(file)), {});
            std::optional<Mount> mount = mountOfNumber(*number, table);
            if (!mount) return std::nullopt;
            Volume& volume = mount->volume;
            volume.isRemovable = isRemovableDevice("/sys/dev/block", mount->deviceName) ||
                                 isOfOpticalDrive(volume.description);
            return std::move(volume);
        });
    }
};

}  // namespace

Volumes& platformVolumes() noexcept {
    static const Immortal<LinuxVolumes> volumes;
    return *volumes;
}

}  // namespace veltra
