// SPDX-License-Identifier: MIT
#include "output_file.h"
#include "report.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <unistd.h>

namespace veltra::console {

namespace {

namespace fs = std::filesystem;

// 0, or the system's error number.
int writeAll(std::FILE* file, const std::string& text) {
    errno = 0;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const bool flushed = std::fflush(file) == 0;
    return written && flushed ? 0 : (errno != 0 ? errno : EIO);
}

int writeTo(const fs::path& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) return errno;
    const int error = writeAll(file, text);
    const int closeError = std::fclose(file) == 0 ? 0 : errno;
    return error != 0 ? error : closeError;
}

// Next to the file, then in its place. A link is followed, so that what it points to is replaced;
// what is not a regular file (a device, a pipe) is written to as it is.
int replace(const std::string& destination, const std::string& text) {
    std::error_code ignored;
    fs::path path = destination;
    if (fs::exists(path, ignored)) {
        path = fs::canonical(path, ignored);
        if (!fs::is_regular_file(path, ignored)) return writeTo(path, text);
    }
    fs::path temporary = path;
    temporary += ".new." + std::to_string(::getpid());
    int error = writeTo(temporary, text);
    if (error == 0 && std::rename(temporary.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) fs::remove(temporary, ignored);
    return error;
}

}  // namespace

std::string writeReport(const std::string& text, const std::string& destination) {
    if (std::string problem = whyNotWrite(destination, OutputKind::Report); !problem.empty())
        return problem;
    const bool toStandardOutput = destination == "-";
    const int error = toStandardOutput ? writeAll(stdout, text) : replace(destination, text);
    if (error == 0) return {};
    return destination + ": the report cannot be written (" +
           std::generic_category().message(error) + "); name another file after --report";
}

}  // namespace veltra::console
