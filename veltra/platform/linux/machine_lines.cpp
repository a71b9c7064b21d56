// SPDX-License-Identifier: MIT
#include "veltra/platform/machine_lines.h"

#include "veltra/base/number_text.h"
#include "veltra/base/text_parts.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/memory_system.h"
#include "veltra/platform/no_cancellation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include <time.h>

namespace veltra {

namespace {

constexpr int kMostProcessors = 4096;
constexpr int kMostCaches = 16;

// Groups that distributions give rights to play in real time. No other is named.
constexpr std::array<std::string_view, 4> kSoundGroups = {"audio", "jackuser", "pipewire",
                                                          "realtime"};

// Of what the kernel was started with, the settings that decide how punctual it is.
constexpr std::array<std::string_view, 6> kKernelSettings = {
    "preempt=", "threadirqs", "isolcpus=", "nohz_full=", "rcu_nocbs=", "mitigations=",
};

// The limits of the process that a sound program meets, as the kernel lists them: name, soft and
// hard limit in columns.
constexpr std::array<std::pair<std::string_view, const char*>, 5> kLimits = {{
    {"Max realtime priority", "real-time priority"},
    {"Max realtime timeout", "real-time stretch"},
    {"Max locked memory", "locked memory"},
    {"Max address space", "address space"},
    {"Max open files", "open files"},
}};

std::string numbered(std::string_view before, int number, std::string_view after) {
    return std::string(before).append(NumberText(number).view()).append(after);
}

std::string lineOf(const std::string& path) {
    return firstLineOfSystemFile(path.c_str()).value_or(std::string());
}

// Appends `piece`, with a separator between two.
void list(std::string& all, std::string_view piece, std::string_view separator = ", ") {
    if (piece.empty()) return;
    if (!all.empty()) all += separator;
    all += piece;
}

std::string processorName() {
    for (const char* key : {"model name", "cpu"})
        if (const auto name = fieldInSystemFile("/proc/cpuinfo", key)) return *name;
    return {};
}

// "L1 data 32K, L1 instruction 32K, L2 1024K"
std::string caches() {
    std::string all;
    for (int index = 0; index < kMostCaches; ++index) {
        const std::string folder = numbered("/sys/devices/system/cpu/cpu0/cache/index", index, "/");
        const std::string size = lineOf(folder + "size");
        if (size.empty()) break;
        const std::string type = lineOf(folder + "type");
        std::string cache(1, 'L');
        cache += lineOf(folder + "level");
        if (type == "Data") cache += " data";
        if (type == "Instruction") cache += " instruction";
        list(all, cache.append(1, ' ').append(size));
    }
    return all;
}

// How many numbers the processors of the machine have, with those that are switched off: one more
// than the last in "0-3,8-11".
int processorNumbers() {
    const std::string ranges = lineOf("/sys/devices/system/cpu/present");
    const std::size_t beforeLast = ranges.find_last_of(",-");  // npos + 1 is the start
    const auto last = numberAtStartOf(std::string_view(ranges).substr(beforeLast + 1));
    return last ? static_cast<int>(std::min<std::uint64_t>(*last, kMostProcessors - 1)) + 1 : 0;
}

// How the processors choose their frequency: each way once. One that is switched off has none.
std::string governors() {
    std::vector<std::string> found;
    const int count = processorNumbers();
    for (int cpu = 0; cpu < count; ++cpu) {
        std::string governor =
            lineOf(numbered("/sys/devices/system/cpu/cpu", cpu, "/cpufreq/scaling_governor"));
        const bool isKnown = std::ranges::find(found, governor) != found.end();
        if (!governor.empty() && !isKnown) found.push_back(std::move(governor));
    }
    std::string all;
    for (const std::string& governor : found)
        list(all, governor);
    return all;
}

// "PREEMPT_DYNAMIC, preempt=full, threadirqs"
std::string preemption() {
    constexpr std::string_view kPreempt = "PREEMPT";
    std::string all;
    const std::string version = lineOf("/proc/sys/kernel/version");
    std::string_view rest = version;
    while (!rest.empty()) {
        const std::string_view word = takeWord(rest, " ");
        if (word.starts_with(kPreempt)) list(all, word);
    }
    const std::string commands = lineOf("/proc/cmdline");
    for (rest = commands; !rest.empty();) {
        const std::string_view word = takeWord(rest, " ");
        const auto begins = [word](std::string_view setting) { return word.starts_with(setting); };
        if (std::ranges::any_of(kKernelSettings, begins)) list(all, word);
    }
    return all;
}

// "locked memory 8388608 (at most 16777216)"
std::string limits() {
    std::string all;
    SystemFileLines lines("/proc/self/limits");
    for (std::string_view line; lines.next(line);) {
        for (const auto& [name, words] : kLimits) {
            if (!line.starts_with(name)) continue;
            line.remove_prefix(name.size());
            const std::string_view soft = takeWord(line, " ");
            const std::string_view hard = takeWord(line, " ");
            std::string limit = words;
            limit.append(1, ' ').append(soft);
            if (hard != soft) limit.append(" (at most ").append(hard).append(1, ')');
            list(all, limit);
            break;
        }
    }
    return all;
}

// "audio"; those of the process's groups that matter here.
std::string soundGroups() {
    const std::string mine = fieldInSystemFile("/proc/self/status", "Groups").value_or("");
    std::string all;
    SystemFileLines lines("/etc/group");
    for (std::string_view line; lines.next(line);) {
        const std::string_view name = takeWord(line, ":");
        takeWord(line, ":");
        const std::string_view number = takeWord(line, ":");
        if (std::ranges::find(kSoundGroups, name) == kSoundGroups.end()) continue;
        for (std::string_view rest = mine; !rest.empty();)
            if (takeWord(rest, " \t") == number) list(all, name);
    }
    return all;
}

std::string realTimeRights() {
    std::string all;
    std::array<char, 1> some{};
    const bool hasKit =
        MemorySystem::current().read(
            "/usr/share/dbus-1/system-services/org.freedesktop.RealtimeKit1.service", 0, some) >= 0;
    list(all, hasKit ? "rtkit is installed" : "no rtkit");
    const std::string groups = soundGroups();
    list(all, groups.empty() ? "in no group for sound" : "groups " + groups);
    const std::string runtime = lineOf("/proc/sys/kernel/sched_rt_runtime_us");
    const std::string period = lineOf("/proc/sys/kernel/sched_rt_period_us");
    if (!runtime.empty() && !period.empty())
        list(all, runtime + " of " + period + " microseconds for real-time threads");
    return all;
}

std::string timers() {
    std::string all;
    timespec resolution{};
    if (::clock_getres(CLOCK_MONOTONIC, &resolution) == 0 && resolution.tv_sec == 0) {
        list(all, NumberText(resolution.tv_nsec).view());
        all += " ns";
    }
    const std::string slack = lineOf("/proc/self/timerslack_ns");
    if (!slack.empty()) list(all, "slack " + slack + " ns");
    const std::string source =
        lineOf("/sys/devices/system/clocksource/clocksource0/current_clocksource");
    if (!source.empty()) list(all, "clock " + source);
    return all;
}

// " 0 [PCH            ]: HDA-Intel - HDA Intel PCH": what stands behind the dash. The lines between
// tell where a card is plugged in.
std::string soundCards() {
    std::string all;
    SystemFileLines lines("/proc/asound/cards");
    for (std::string_view line; lines.next(line);) {
        const std::size_t bracket = line.find("]:");
        if (bracket == std::string_view::npos) continue;
        line.remove_prefix(bracket + 2);
        const std::size_t dash = line.find(" - ");
        if (dash != std::string_view::npos) line.remove_prefix(dash + 3);
        list(all, trimmed(line));
    }
    return all;
}

// Nothing in a report moves the cursor or begins a line of its own.
std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return wellFormedUtf8(std::move(text));
}

}  // namespace

std::vector<MachineLine> platformMachineLines() {
    const NoCancellation whileFilesAreRead;
    std::vector<MachineLine> lines;
    const auto add = [&lines](const char* name, std::string text) {
        if (!text.empty()) lines.push_back({name, printable(std::move(text))});
    };
    add("processor name", processorName());
    add("caches", caches());
    add("frequency governor", governors());
    add("preemption", preemption());
    add("process limits", limits());
    add("real-time rights", realTimeRights());
    add("timer resolution", timers());
    add("swappiness", lineOf("/proc/sys/vm/swappiness"));
    add("sound cards", soundCards());
    return lines;
}

}  // namespace veltra
