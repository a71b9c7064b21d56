// SPDX-License-Identifier: MIT
// What the window keeps from one run to the next, in the framework's preferences.
#pragma once

#include "meter_group.h"
#include "veltra/ui/geometry.h"

#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

// Each of these sees what was set before, and write() puts it on the disk; what cannot be stored is
// lost without a word, since the console plays as well without. Thread: main.
struct Settings {
    static constexpr std::size_t kMostRecent = 8;

    static std::optional<Size> windowSize();
    static void setWindowSize(Size size);

    static MeterKind meterKind();
    static void setMeterKind(MeterKind kind);

    // The newest first; no file twice.
    static std::vector<std::string> recentFiles();
    static void addRecentFile(const std::string& path);

    // May wait for a busy disk: call it when nobody looks any more.
    static void write();
};

}  // namespace veltra::console
