// SPDX-License-Identifier: MIT
// A folder of its own for a test, removed with all that is in it; and files in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
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

// Writes a file, after the folders on its way.
inline void putText(const std::filesystem::path& file, std::string_view text = "x") {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
}

inline std::string textOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Writes a program of bash: sh may start by unblocking every signal.
inline std::string putProgram(const std::filesystem::path& file, const std::string& script,
                              std::filesystem::perms rights = std::filesystem::perms(0755)) {
    putText(file, "#!/bin/bash\n" + script + '\n');
    std::filesystem::permissions(file, rights);
    return file;
}

}  // namespace veltra::testing
