// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/optical_drive_lists.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <tuple>

namespace veltra {

namespace {

using Words = std::vector<std::string>;

constexpr std::streamsize kLongestList = 65536;

// The fields of the line that begins with `title`, which ends with a colon.
Words fieldsOf(std::string_view title, std::string_view text) {
    Words fields;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.starts_with(title)) continue;
        line.remove_prefix(title.size());
        for (;;) {
            line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
            if (line.empty()) return fields;
            const std::size_t length = std::min(line.find_first_of(" \t"), line.size());
            fields.emplace_back(line.substr(0, length));
            line.remove_prefix(length);
        }
    }
    return fields;
}

std::string textOf(const std::string& path) {
    std::string text(static_cast<std::size_t>(kLongestList), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(text.data(), kLongestList);
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

bool isDriveName(std::string_view name) {
    return name.size() > 2 && name.starts_with("sr") &&
           name.find_first_not_of("0123456789", 2) == std::string_view::npos;
}

}  // namespace

std::vector<OpticalDrive> drivesOfKernel(const std::string& blockFolder,
                                         const std::string& kernelList) {
    Words names;
    FileSystem& files = platformFileSystem();
    FileSystem::Handle folder = FileSystem::kNone;
    if (!files.open(FileSystem::kWorkingFolder, blockFolder.c_str(), FileSystem::Access::List,
                    FileSystem::LastLink::Follow, folder)) {
        (void)files.list(folder, names);
        (void)files.close(folder);
    }
    std::erase_if(names, [](const std::string& name) { return !isDriveName(name); });
    std::sort(names.begin(), names.end(), [](const std::string& one, const std::string& other) {
        return std::make_tuple(one.size(), std::string_view(one)) <
               std::make_tuple(other.size(), std::string_view(other));  // sr2, sr10
    });

    const std::string list = names.empty() ? std::string() : textOf(kernelList);
    const Words columns = fieldsOf("drive name:", list);
    const Words readsDvd = fieldsOf("Can read DVD:", list);
    std::vector<OpticalDrive> drives;
    for (std::string& name : names) {
        const auto column = static_cast<std::size_t>(
            std::find(columns.begin(), columns.end(), name) - columns.begin());
        const bool isForDvd = column < readsDvd.size() && readsDvd[column] == "1";
        drives.push_back({std::move(name), isForDvd ? "IODVDServices" : "IOCDServices"});
    }
    return drives;
}

}  // namespace veltra
