// SPDX-License-Identifier: MIT
// The kernel's table of mounts, as /proc/self/mountinfo has it.
#pragma once

#include "veltra/platform/volumes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

struct Mount {
    Volume volume;           // isRemovable is not known to the table
    std::string deviceName;  // "8:1", the numbers of the device
};

// The line of a mount's number; nothing when there is none, or when it is malformed. Raises
// std::bad_alloc.
std::optional<Mount> mountOfNumber(std::uint64_t number, std::string_view table);

// Whether the kernel says that the medium of a block device can be taken out. `folder` has an entry
// for each device by its numbers (/sys/dev/block); the one of a partition stands within its disk's.
bool isRemovableDevice(const std::string& folder, const std::string& deviceName);

}  // namespace veltra
