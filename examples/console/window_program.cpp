// SPDX-License-Identifier: MIT
#include "window_program.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace veltra::console {

bool wantsWindow(const Options& options) {
    if (!options.picture.empty()) return true;
    if (options.headless || options.terminal || !options.bounce.empty()) return false;
    const auto isSet = [](const char* name) {
        const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
        return value != nullptr && *value != '\0';
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

void becomeWindow(char** arguments) {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return;
    const std::string program = self.parent_path() / "veltra-console-window";
    execv(program.c_str(), arguments);
}

void becomeTerminal(std::span<char*> arguments) {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error || arguments.empty()) return;
    const std::string program = self.parent_path() / "veltra-console";
    std::fprintf(stderr, "veltra-console: no window: the display does not answer\n");
    char option[] = "--terminal";
    std::vector<char*> changed(arguments.begin(), arguments.end());
    changed.insert(changed.begin() + 1, option);
    changed.push_back(nullptr);
    execv(program.c_str(), changed.data());
}

}  // namespace veltra::console
