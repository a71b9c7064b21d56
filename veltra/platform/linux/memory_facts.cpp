// SPDX-License-Identifier: MIT
// The texts of /proc and of both kinds of control groups.
//
// A process is in one group of each hierarchy. The limits of all groups above it hold as well, so
// the tree is walked up to where it is mounted.
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/memory_system.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace veltra {

namespace {

using Bytes = std::optional<std::uint64_t>;
using Lines = SystemFileLines;

// The older hierarchy has a number just below 2^63 for "none".
constexpr std::uint64_t kNoGroupLimit = std::uint64_t{1} << 60;

bool contains(std::string_view list, std::string_view word) noexcept {
    while (!list.empty())
        if (takeWord(list, ",") == word) return true;
    return false;
}

// Blanks and the like are written as a backslash and three octal digits in the list of mounts.
std::size_t unescape(std::string_view text, std::span<char> path) noexcept {
    std::size_t size = 0;
    while (!text.empty() && size + 1 < path.size()) {
        unsigned code = 0;
        if (text.size() >= 4 && text[0] == '\\' &&
            std::from_chars(&text[1], &text[1] + 3, code, 8).ptr == &text[1] + 3) {
            path[size++] = static_cast<char>(code);
            text.remove_prefix(4);
        } else {
            path[size++] = text[0];
            text.remove_prefix(1);
        }
    }
    path[size] = '\0';
    return size;
}

struct Mount {
    std::string_view root, point, type, options;
};

// id, parent, device, root, point, options, any number of fields, "-", type, source, options
Mount mountFrom(std::string_view line) noexcept {
    Mount mount;
    for (int field = 0; field < 3; ++field)
        takeWord(line, " ");
    mount.root = takeWord(line, " ");
    mount.point = takeWord(line, " ");
    while (!line.empty() && takeWord(line, " ") != "-") {
    }
    mount.type = takeWord(line, " ");
    takeWord(line, " ");
    mount.options = takeWord(line, " ");
    return mount;
}

// "/a/b" below "/a" is "/b". A group outside of what is mounted is looked at from the mount's root.
std::string_view below(std::string_view path, std::string_view root) noexcept {
    if (root == "/") return path == "/" ? std::string_view() : path;
    if (!path.starts_with(root)) return {};
    path.remove_prefix(root.size());
    return path.empty() || path.front() == '/' ? path : std::string_view();
}

// The process's group in the hierarchy whose line in /proc/self/cgroup has `controller` in its list
// ("" for the unified one, whose list is empty).
template <typename Found>
void findGroup(std::string_view controller, Found found) noexcept {
    Lines lines("/proc/self/cgroup");
    for (std::string_view line; lines.next(line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (first == std::string_view::npos || second == std::string_view::npos) continue;
        const std::string_view controllers = line.substr(first + 1, second - first - 1);
        if (controller.empty() ? !controllers.empty() : !contains(controllers, controller))
            continue;
        found(line.substr(second + 1));
        return;
    }
}

template <typename Found>
void findMount(std::string_view type, std::string_view controller, Found found) noexcept {
    Lines lines("/proc/self/mountinfo");
    for (std::string_view line; lines.next(line);) {
        const Mount mount = mountFrom(line);
        if (mount.type != type || mount.point.empty()) continue;
        if (!controller.empty() && !contains(mount.options, controller)) continue;
        found(mount);
        return;
    }
}

// Per cent, as in "some avg10=0.12 avg60=...".
std::optional<double> averageOf(std::string_view line) noexcept {
    constexpr std::string_view kName = "avg10=";
    const std::size_t start = line.find(kName);
    if (start == std::string_view::npos) return {};
    line.remove_prefix(start + kName.size());
    double value = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value);
    if (error != std::errc() || !(value >= 0 && value <= 100)) return {};
    return value;
}

}  // namespace

MemoryFactsReader::MemoryFactsReader() noexcept {
    const auto find = [](std::string_view type, std::string_view controller, Group& group) {
        std::size_t length = 0;
        Path inHierarchy{};
        findGroup(controller, [&](std::string_view path) {
            if (path.size() >= inHierarchy.size()) return;
            length = path.size();
            std::copy(path.begin(), path.end(), inHierarchy.begin());
        });
        if (length == 0) return;
        findMount(type, controller, [&](const Mount& mount) {
            Path root{};
            unescape(mount.root, root);
            group.mountLength = unescape(mount.point, group.path);
            const std::string_view rest = below({inHierarchy.data(), length}, root.data());
            if (group.mountLength + rest.size() >= group.path.size()) return;
            std::copy(rest.begin(), rest.end(), group.path.begin() + group.mountLength);
            group.path[group.mountLength + rest.size()] = '\0';
        });
    };
    find("cgroup2", "", m_unified);
    find("cgroup", "memory", m_legacy);
    std::array<char, 1> some{};
    std::snprintf(m_pressurePath.data(), m_pressurePath.size(), "%s/memory.pressure",
                  m_unified.path.data());
    if (m_unified.path[0] == '\0' ||
        MemorySystem::current().read(m_pressurePath.data(), 0, some) <= 0)
        std::snprintf(m_pressurePath.data(), m_pressurePath.size(), "/proc/pressure/memory");
}

void MemoryFactsReader::readGroup(const Group& group, bool isUnified,
                                  MemoryFacts& facts) const noexcept {
    constexpr std::size_t kLongestName = 32;
    std::array<char, kLongestPath + kLongestName> file{};
    Path folder = group.path;
    std::size_t length = std::strlen(folder.data());
    const auto numberIn = [&](const char* name, std::string_view key = {}) {
        std::snprintf(file.data(), file.size(), "%s/%s", folder.data(), name);
        return numberInSystemFile(file.data(), key);
    };
    while (length > 0) {
        const Bytes limit =
            isUnified ? MemoryFacts::least(numberIn("memory.max"), numberIn("memory.high"))
                      : numberIn("memory.limit_in_bytes");
        const Bytes used = numberIn(isUnified ? "memory.current" : "memory.usage_in_bytes");
        if (limit && *limit < kNoGroupLimit) {
            facts.groupLimit = MemoryFacts::least(facts.groupLimit, limit);
            const std::uint64_t files =
                numberIn("memory.stat", isUnified ? "inactive_file" : "total_inactive_file")
                    .value_or(0);
            const std::uint64_t needed = used ? *used - std::min(*used, files) : 0;
            if (used)
                facts.groupRoom =
                    MemoryFacts::least(facts.groupRoom, *limit - std::min(*limit, needed));
        }
        if (length <= group.mountLength) break;
        while (length > group.mountLength && folder[--length] != '/') {
        }
        folder[length] = '\0';
        // In the older hierarchy a group may be told not to count what is below it.
        if (!isUnified && numberIn("memory.use_hierarchy") == Bytes(0)) break;
    }
}

MemoryFacts MemoryFactsReader::read() const noexcept {
    constexpr std::uint64_t kKibibyte = 1024;
    MemoryFacts facts;
    facts.total = numberInSystemFile("/proc/meminfo", "MemTotal:", kKibibyte);
    facts.available = numberInSystemFile("/proc/meminfo", "MemAvailable:", kKibibyte);
    readGroup(m_unified, true, facts);
    readGroup(m_legacy, false, facts);
    facts.addressSpaceUsed = numberInSystemFile("/proc/self/status", "VmSize:", kKibibyte);
    const MemorySystem::Limits limits = MemorySystem::current().addressSpaceLimits();
    if (limits.current != MemorySystem::kNoLimit) facts.addressSpaceLimit = limits.current;
    Lines lines(m_pressurePath.data());
    for (std::string_view line; lines.next(line);) {
        if (line.starts_with("some ")) facts.someStalled = averageOf(line);
        if (line.starts_with("full ")) facts.allStalled = averageOf(line);
    }
    return facts;
}

}  // namespace veltra
