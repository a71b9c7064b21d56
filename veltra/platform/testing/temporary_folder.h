// SPDX-License-Identifier: MIT
// A folder of its own for a test, removed with all that is in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace veltra::testing {

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = std::filesystem::temp_directory_path() / "veltra-XXXXXX";
        path = ::mkdtemp(pattern.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path); }

    std::string operator/(const char* name) const { return path / name; }

    std::filesystem::path path;
};

}  // namespace veltra::testing
