// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_Paths.h"

#include "veltra/Source/Extensions/detail/path_extension.h"
#include "veltra/base/out_of_memory.h"

#include <algorithm>

namespace veltra {

namespace {

// Takes the last component off the end of `path`; empty when there is none left.
std::string_view takeLast(std::string_view& path) noexcept {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    const bool isRoot = path == "/";
    const std::size_t start = isRoot || slash == std::string_view::npos ? 0 : slash + 1;
    const std::string_view last = path.substr(start);
    path = path.substr(0, start);
    return last;
}

}  // namespace

bool containsPathComponent(std::string_view path, std::string_view component,
                           CompareOptions options) noexcept {
    if (component.empty()) return false;
    while (!path.empty()) {
        if (equals(takeLast(path), component, options)) return true;
    }
    return false;
}

bool containsLastPathComponents(std::string_view path, std::string_view components) noexcept {
    if (components.empty()) return false;
    while (!components.empty()) {
        if (takeLast(path) != takeLast(components)) return false;
    }
    return true;
}

std::int32_t lastPathComponentCompare(std::string_view path, std::string_view other) noexcept {
    const int order = detail::lastNameOf(path).compare(detail::lastNameOf(other));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

std::string firstPathComponent(std::string_view path) noexcept {
    return unlessOutOfMemory(std::string(), [&] {
        const bool isAbsolute = path.starts_with('/');
        return std::string(isAbsolute ? path.substr(0, 1) : path.substr(0, path.find('/')));
    });
}

std::string stringByDeletingNumberOfLastPathComponents(std::string_view path,
                                                       std::int32_t count) noexcept {
    return unlessOutOfMemory(std::string(), [&] {
        if (count <= 0) return std::string(path);
        std::string_view left = path;
        for (; count > 0 && !left.empty(); --count)
            takeLast(left);
        while (left.size() > 1 && left.back() == '/')
            left.remove_suffix(1);
        const bool isRoot = left.empty() && path.starts_with('/');
        return std::string(isRoot ? path.substr(0, 1) : left);
    });
}

}  // namespace veltra
