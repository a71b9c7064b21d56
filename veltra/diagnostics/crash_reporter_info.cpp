// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/crash_reporter_info.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/base/string_object_text.h"

#include <cstdlib>

namespace veltra {

namespace {

// Null when memory is out.
char* copyOf(const VLString* text) noexcept {
    const std::size_t length = utf8LengthOf(text);
    auto* const copy = static_cast<char*>(std::malloc(length + 1));
    if (copy != nullptr) copy[copyUtf8(text, copy, length)] = '\0';
    return copy;
}

}  // namespace

extern "C" {

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is what debuggers look for
constinit std::atomic<char*> ___crashreporter_info__{nullptr};

void VLSetCrashReporterInfo(const VLString* text) noexcept {
    const ErrnoKeeper keeper;
    char* const copy = text != nullptr ? copyOf(text) : nullptr;
    if (text != nullptr && copy == nullptr) return;
    // In place before the old one is freed: a crash in between finds a whole text.
    std::free(___crashreporter_info__.exchange(copy, std::memory_order_acq_rel));  // with itself
}

}  // extern "C"

}  // namespace veltra
