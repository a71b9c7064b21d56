// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/optical_drive_lists.h"

#include <memory>

#include <libudev.h>

namespace veltra {

namespace {

template <typename Object, Object* (*release)(Object*)>
struct Release {
    void operator()(Object* object) const noexcept { release(object); }
};

using Manager = std::unique_ptr<udev, Release<udev, udev_unref>>;
using Search = std::unique_ptr<udev_enumerate, Release<udev_enumerate, udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Release<udev_device, udev_device_unref>>;

bool has(const Device& device, const char* property) {
    const char* const value = udev_device_get_property_value(device.get(), property);
    return value != nullptr && *value == '1';
}

}  // namespace

std::vector<OpticalDrive> drivesOfDeviceManager() {
    std::vector<OpticalDrive> drives;
    const Manager manager(udev_new());
    if (!manager) return drives;
    const Search search(udev_enumerate_new(manager.get()));
    if (!search || udev_enumerate_add_match_subsystem(search.get(), "block") < 0 ||
        udev_enumerate_add_match_property(search.get(), "ID_CDROM", "1") < 0 ||
        udev_enumerate_scan_devices(search.get()) < 0)
        return drives;

    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(search.get())) {
        const Device device(
            udev_device_new_from_syspath(manager.get(), udev_list_entry_get_name(entry)));
        const char* const name = device ? udev_device_get_sysname(device.get()) : nullptr;
        if (name == nullptr) continue;  // unplugged meanwhile
        drives.push_back({name, has(device, "ID_CDROM_BD")    ? "IOBDServices"
                                : has(device, "ID_CDROM_DVD") ? "IODVDServices"
                                                              : "IOCDServices"});
    }
    return drives;
}

}  // namespace veltra
