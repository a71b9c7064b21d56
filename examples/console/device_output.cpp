// SPDX-License-Identifier: MIT
#include "audio_output.h"

#include <array>
#include <filesystem>
#include <system_error>

#include <dlfcn.h>

namespace veltra::console {

namespace {

// Beside the program (the build tree), or where an installed program has its modules.
void* loadModule() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (error) return nullptr;
    const std::array<std::filesystem::path, 2> places{
        folder / CONSOLE_DEVICE_MODULE, folder / CONSOLE_MODULE_FOLDER / CONSOLE_DEVICE_MODULE};
    for (const auto& place : places) {
        // Never unloaded: the sound libraries leave threads behind.
        if (void* module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL)) return module;
    }
    return nullptr;
}

template <typename Function>
Function functionOf(const char* symbol) {
    static void* const module = loadModule();
    return module != nullptr ? reinterpret_cast<Function>(dlsym(module, symbol)) : nullptr;
}

}  // namespace

std::unique_ptr<AudioOutput> openDeviceOutput(const Device& device, std::int32_t rate,
                                              std::string& problem) {
    const auto open = functionOf<OpenDeviceFunction>(kOpenDeviceSymbol);
    if (open == nullptr) {
        problem = "the module for audio devices cannot be loaded; playing to no device";
        return nullptr;
    }
    std::unique_ptr<AudioOutput> output(open(device, rate));
    if (!output && device.id == "auto") {
        problem = "there is no usable audio device; playing to no device";
    } else if (!output) {
        problem = device.id + ": there is no such audio device, or it cannot be used now; see " +
                  "veltra-console --list-devices";
    }
    return output;
}

std::vector<DeviceInfo> listDevices() {
    std::vector<DeviceInfo> devices;
    const auto list = functionOf<ListDevicesFunction>(kListDevicesSymbol);
    if (list != nullptr) list(devices);
    return devices;
}

}  // namespace veltra::console
