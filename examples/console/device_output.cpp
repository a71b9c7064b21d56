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

}  // namespace

std::unique_ptr<AudioOutput> openDeviceOutput(std::int32_t rate, std::string& problem) {
    void* module = loadModule();
    void* symbol = module != nullptr ? dlsym(module, kOpenDeviceSymbol) : nullptr;
    if (symbol == nullptr) {
        problem = "the module for audio devices cannot be loaded; playing to no device";
        return nullptr;
    }
    std::unique_ptr<AudioOutput> output(reinterpret_cast<OpenDeviceFunction>(symbol)(rate));
    if (!output) problem = "there is no usable audio device; playing to no device";
    return output;
}

}  // namespace veltra::console
