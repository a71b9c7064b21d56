// SPDX-License-Identifier: MIT
#include "output_file.h"

#include "veltra/platform/application_facts.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace veltra::console {

namespace {

namespace fs = std::filesystem;

// A name, then what was found in the file of that name.
bool isReport(std::string_view start) {
    const std::size_t end = start.find('\n');
    if (end == 0 || end == std::string_view::npos || start.front() == ' ') return false;
    const std::string_view second = start.substr(end + 1);
    return second.starts_with("  format      ") || second.starts_with("  error       ");
}

// A PNG file that says which program has written it, as ours do.
bool isPicture(std::string_view start) {
    const std::string writer = std::string("tEXtSoftware") + '\0' + applicationName();
    return start.starts_with("\x89PNG\r\n\x1A\n") && start.find(writer) != std::string_view::npos;
}

bool isOwn(const std::string& path, OutputKind kind) {
    std::array<char, 8192> start{};  // names of files are shorter
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    const std::string_view text(start.data(), static_cast<std::size_t>(file.gcount()));
    if (file.bad()) return false;
    return text.empty() || (kind == OutputKind::Report ? isReport(text) : isPicture(text));
}

}  // namespace

std::string whyNotWrite(const std::string& path, OutputKind kind,
                        std::span<const std::string> inputs) {
    const bool isForReport = kind == OutputKind::Report;
    if (isForReport && path == "-") return {};
    const std::string option = isForReport ? "--report" : "--picture";
    const std::string advice = "; name another file after " + option;
    std::error_code ignored;
    for (const std::string& input : inputs) {
        if (fs::equivalent(path, input, ignored))
            return path + " is one of the recordings" + advice;
    }
    if (!isForReport && fs::path(path).extension() != ".png")
        return path + ": a picture is a PNG file; give it a name that ends in .png";
    if (!fs::is_regular_file(path, ignored) || isOwn(path, kind)) return {};
    return path + " is there already, and is no " + (isForReport ? "report" : "picture") +
           " of this program" + advice;
}

std::string whyNotWrite(const Options& options) {
    if (!options.report.empty())
        return whyNotWrite(options.report, OutputKind::Report, options.files);
    if (options.picture.empty()) return {};
    return whyNotWrite(options.picture, OutputKind::Picture, options.files);
}

}  // namespace veltra::console
