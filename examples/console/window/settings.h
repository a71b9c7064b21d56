// SPDX-License-Identifier: MIT
// What the window keeps from one run to the next, in the framework's preferences.
#pragma once

#include "meter_group.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
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

    struct Keyboard {
        bool isOpen = false;
        std::uint32_t firstKey = 28;  // a white key, from 0 for the lowest C
        int velocity = 100;
        std::string file;  // that is played; empty: a tone
    };
    static Keyboard keyboard();
    static void setKeyboard(const Keyboard& keyboard);

    // The newest first; no file twice.
    static std::vector<std::string> recentFiles();
    static void addRecentFile(const std::string& path);

    // May wait for a busy disk: call it when nobody looks any more.
    static void write();
};

}  // namespace veltra::console
