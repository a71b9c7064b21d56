// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/detail/profile_files.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>

namespace veltra {

namespace {
constexpr std::size_t kLargestFile = 1'048'576;
std::string folder;
}  // namespace

bool isSnowLeopardOrNewer() noexcept {
    return false;
}

void setResourceFolder(std::string path) {
    folder = std::move(path);
}

std::optional<std::string> profileFile(const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(folder) / name;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text(kLargestFile + 1, '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(text.size())).eof() || file.bad())
        return std::nullopt;
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

}  // namespace veltra
