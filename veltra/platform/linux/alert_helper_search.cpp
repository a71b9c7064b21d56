// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_helper_search.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr std::array<std::string_view, 7> kRelativePaths = {
    "veltra-alert",                       // bundled with the host
    "../libexec/veltra/veltra-alert",     // installed: lib/ or bin/
    "../../libexec/veltra/veltra-alert",  // installed: lib/<architecture>/
    "qt/veltra-alert",                    // build tree: the library
    "../qt/veltra-alert",                 // build tree: a program of a room
    "../veltra/qt/veltra-alert",          // build tree: a program beside the rooms
    "../../veltra/qt/veltra-alert",       // build tree: a program in a folder of its own
};

// Lies in whichever file holds this code.
constexpr char kInThisFile = 0;

bool mayBeStarted(const char* program, uid_t ownerOfOrigin) noexcept {
    struct stat status {};
    if (::stat(program, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    if ((status.st_mode & S_IWOTH) != 0) return false;
    const uid_t owner = status.st_uid;
    if (owner != 0 && owner != ::geteuid() && owner != ownerOfOrigin) return false;
    return ::access(program, X_OK) == 0;
}

}  // namespace

std::string findAlertHelper() {
    Dl_info here{};
    // A relative name (a program's is what it was started as) says nothing in a folder that may
    // have changed since.
    const bool isKnown = ::dladdr(&kInThisFile, &here) != 0 && here.dli_fname != nullptr;
    if (isKnown && *here.dli_fname == '/') {
        std::string found = findAlertHelperNear(here.dli_fname);
        if (!found.empty()) return found;
    }
    return findAlertHelperNear("/proc/self/exe");
}

std::string findAlertHelperNear(const char* origin) {
    std::array<char, PATH_MAX> resolved{};
    struct stat status {};
    if (::realpath(origin, resolved.data()) == nullptr || ::stat(origin, &status) != 0) return {};
    std::string folder = resolved.data();
    folder.resize(folder.rfind('/') + 1);
    for (const std::string_view relative : kRelativePaths) {
        std::string candidate = folder;
        candidate += relative;
        if (mayBeStarted(candidate.c_str(), status.st_uid)) return candidate;
    }
    return {};
}

}  // namespace veltra
