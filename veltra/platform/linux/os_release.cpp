// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/os_release.h"

#include "veltra/base/text_parts.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/system_queries.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <map>

namespace veltra {

namespace {

constexpr std::size_t kLargestFile = 65'536;
constexpr std::array kPaths = {"/etc/os-release", "/usr/lib/os-release"};

using Fields = std::map<std::string, std::string, std::less<>>;

// The text of a value; nothing when a quote does not end.
std::optional<std::string> unquoted(std::string_view value) {
    constexpr std::string_view kEscapedInQuotes = "$\"\\`";
    std::string text;
    char quote = '\0';
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char here = value[at];
        const bool isLast = at + 1 == value.size();
        if (here == quote && quote != '\0') {
            quote = '\0';
        } else if (quote == '\0' && (here == '"' || here == '\'')) {
            quote = here;
        } else if (here == '\\' && quote != '\'' && !isLast &&
                   (quote == '\0' ||
                    kEscapedInQuotes.find(value[at + 1]) != kEscapedInQuotes.npos)) {
            text += value[++at];
        } else {
            text += here;
        }
    }
    if (quote != '\0') return {};
    return text;
}

Fields fieldsOf(std::string_view osRelease) {
    constexpr auto isNamed = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               c == '_';
    };
    Fields fields;
    while (!osRelease.empty()) {
        const std::string_view line = trimmed(takeUpTo('\n', osRelease));
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string_view key = line.substr(0, equals);
        if (!std::ranges::all_of(key, isNamed)) continue;
        if (const auto value = unquoted(line.substr(equals + 1)))
            fields.insert_or_assign(std::string(key), wellFormedUtf8(*value));
    }
    return fields;
}

std::string firstOf(const Fields& fields, std::initializer_list<std::string_view> keys) {
    for (const std::string_view key : keys) {
        const auto found = fields.find(key);
        if (found != fields.end() && !found->second.empty()) return found->second;
    }
    return {};
}

}  // namespace

std::optional<SystemVersion> systemVersionFrom(std::string_view osRelease,
                                               const std::string& kernelRelease) {
    const Fields fields = fieldsOf(osRelease);
    SystemVersion found{firstOf(fields, {"NAME", "ID"}),
                        firstOf(fields, {"VERSION_ID", "VERSION", "VERSION_CODENAME"}),
                        firstOf(fields, {"BUILD_ID", "IMAGE_VERSION"})};
    if (found.product.empty()) found.product = "Linux";
    if (found.build.empty()) found.build = wellFormedUtf8(kernelRelease);
    if (found.build.empty()) return {};
    if (found.version.empty()) found.version = found.build;
    return found;
}

std::optional<SystemVersion> platformSystemVersion() {
    const NoCancellation whileFilesAreRead;
    for (const char* path : kPaths) {
        if (const auto text = textOfSystemFile(path, kLargestFile))
            return systemVersionFrom(*text,
                                     SystemQueries::current().text(SystemKey::KernelRelease));
    }
    return {};
}

}  // namespace veltra
