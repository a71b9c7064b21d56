// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/mount_table.h"

#include "veltra/base/text_parts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>

namespace veltra {

namespace {

bool hasOption(std::string_view options, std::string_view wanted) noexcept {
    while (!options.empty()) {
        if (takeUpTo(',', options) == wanted) return true;
    }
    return false;
}

// The kernel writes blanks and backslashes in names as three octal digits: \040.
std::string unescaped(std::string_view field) {
    std::string text;
    for (std::size_t index = 0; index < field.size(); ++index) {
        unsigned code = 0;
        const char* const digits = field.data() + index + 1;
        const bool isEscaped = field[index] == '\\' && field.size() - index > 3 &&
                               std::from_chars(digits, digits + 3, code, 8).ptr == digits + 3 &&
                               code < 256;
        text += isEscaped ? static_cast<char>(static_cast<unsigned char>(code)) : field[index];
        if (isEscaped) index += 3;
    }
    return text;
}

}  // namespace

std::optional<Mount> mountOfNumber(std::uint64_t number, std::string_view table) {
    while (!table.empty()) {
        std::string_view line = takeUpTo('\n', table);
        const std::string_view first = takeUpTo(' ', line);
        std::uint64_t read = 0;
        const char* const end = first.data() + first.size();
        const auto result = std::from_chars(first.data(), end, read);
        if (result.ec != std::errc() || result.ptr != end || read != number) continue;

        // parent, device, root, mount point, options, any number of further fields, "-", type,
        // source, options of the file system
        takeUpTo(' ', line);
        Mount mount;
        mount.deviceName = takeUpTo(' ', line);
        takeUpTo(' ', line);
        mount.volume.path = unescaped(takeUpTo(' ', line));
        const bool isReadOnly = hasOption(takeUpTo(' ', line), "ro");
        while (!line.empty() && takeUpTo(' ', line) != "-") {
        }
        if (line.empty()) return std::nullopt;
        mount.volume.type = unescaped(takeUpTo(' ', line));
        mount.volume.description = unescaped(takeUpTo(' ', line));
        mount.volume.isWritable = !isReadOnly && !hasOption(line, "ro");
        mount.volume.isUnmountable = mount.volume.path != "/";
        return mount;
    }
    return std::nullopt;
}

bool isRemovableDevice(const std::string& folder, const std::string& deviceName) {
    const std::string device = folder + '/' + deviceName;
    for (const char* file : {"/removable", "/../removable"}) {
        std::ifstream fact(device + file);
        if (fact.is_open()) return fact.get() == '1';
    }
    return false;
}

}  // namespace veltra
