// SPDX-License-Identifier: MIT
// Where the files of this process lie.
#include "veltra/platform/port.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

namespace veltra {

namespace {

// Lies in whichever file holds this code.
constexpr char kInThisFile = 0;

std::string resolved(const char* path) {
    std::array<char, PATH_MAX> result{};
    return ::realpath(path, result.data()) != nullptr ? result.data() : "";
}

}  // namespace

std::string platformExecutablePath() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    std::string_view program(path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    // Such a program was removed or replaced while it runs; its folder is still its folder.
    constexpr std::string_view kRemoved = " (deleted)";
    if (program.ends_with(kRemoved) && ::access(path.data(), F_OK) != 0)
        program.remove_suffix(kRemoved.size());
    return std::string(program);
}

std::string platformLibraryPath() {
    Dl_info here{};
    // A relative name says nothing in a folder that may have changed since.
    if (::dladdr(&kInThisFile, &here) != 0 && here.dli_fname != nullptr && *here.dli_fname == '/')
        return resolved(here.dli_fname);
    return platformExecutablePath();
}

std::vector<std::string> platformLibraryFolders() {
#ifdef VELTRA_LIBRARY_ARCHITECTURE
    const std::string architecture = VELTRA_LIBRARY_ARCHITECTURE;
    return {"/usr/local/lib/" + architecture, "/usr/local/lib", "/usr/lib/" + architecture,
            "/usr/lib64", "/usr/lib"};
#else
    return {"/usr/local/lib", "/usr/lib64", "/usr/lib"};
#endif
}

}  // namespace veltra
