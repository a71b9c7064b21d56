// SPDX-License-Identifier: MIT
// Where the files of this process lie.
#include "veltra/platform/port.h"

#include <array>
#include <climits>
#include <cstdlib>

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
    return resolved("/proc/self/exe");  // nothing for a program that was replaced while it runs
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
