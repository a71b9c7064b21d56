// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_Paths.h"
#include "veltra/Source/Extensions/detail/alias_file.h"
#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/path_extension.h"
#include "veltra/base/text_parts.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/start_of_file.h"
#include "veltra/platform/volumes.h"

namespace veltra {

namespace {

using Path = std::optional<std::string>;

constexpr int kMostAliases = 16;

Path withoutLinks(const std::string& path) {
    std::string resolved;
    if (detail::canonicalPath(path, resolved)) return std::nullopt;
    return resolved;
}

std::string withHome(std::string_view path) {
    if (!path.starts_with('~')) return std::string(path);
    const std::size_t end = std::min(path.find('/'), path.size());
    std::string home = FileSystem::current().homeFolder(std::string(path.substr(1, end - 1)));
    return home.empty() ? std::string(path) : home.append(path.substr(end));
}

// `path` has no links.
std::string withoutAliases(const std::string& path) {
    std::string at = path;
    for (int aliases = 0; aliases <= kMostAliases; ++aliases) {
        const Path target = detail::targetOfAlias(at);
        if (!target) return at;
        const Path next = withoutLinks(*target);
        if (!next) break;
        at = *next;
    }
    return path;
}

std::string resolved(const std::string& path) {
    if (const Path item = withoutLinks(path)) return withoutAliases(*item);
    const std::string_view name = detail::lastNameOf(path);
    std::string_view parent =
        std::string_view(path).substr(0, static_cast<std::size_t>(name.data() - path.data()));
    while (parent.size() > 1 && parent.back() == '/')
        parent.remove_suffix(1);
    // Without a working folder even "." leads nowhere.
    if (name.empty() || path == "." || path.size() > detail::kLongestPath) return path;
    const std::string rebuilt = parent.empty()
                                    ? detail::pathIn(resolved("."), name)
                                    : detail::pathIn(resolved(std::string(parent)), name);
    const Path item = withoutLinks(rebuilt);
    return item ? withoutAliases(*item) : rebuilt;
}

bool isListedAsHidden(const std::string& folder, std::string_view name) {
    constexpr std::size_t kEnough = 65536;  // bytes
    const Path text = startOfFile(detail::pathIn(folder, ".hidden"), kEnough);
    if (!text) return false;
    for (std::string_view rest = *text; !rest.empty();) {
        if (takeUpTo('\n', rest) == name) return true;
    }
    return false;
}

}  // namespace

std::optional<std::string> pathByResolvingSymlinksAndAliasesInPath(std::string_view path) noexcept {
    return detail::answerAboutFiles(Path(), [&]() -> Path {
        if (!detail::canBePath(path)) return std::nullopt;
        return resolved(withHome(path));
    });
}

bool isFileVisible(std::string_view path) noexcept {
    return detail::answerAboutFiles(false, [&] {
        const Path item = pathByResolvingSymlinksAndAliasesInPath(path);
        FileFacts facts;
        if (!item || FileSystem::current().facts(FileSystem::kWorkingFolder, item->c_str(),
                                                 FileSystem::LastLink::Follow, facts))
            return false;
        const std::string_view name = detail::lastNameOf(*item);
        if (name.empty()) return true;  // "/"
        if (name.starts_with('.')) return false;
        return !isListedAsHidden(stringByDeletingNumberOfLastPathComponents(*item, 1), name);
    });
}

bool isPathOnCDDVD(std::string_view path) noexcept {
    return detail::answerAboutFiles(false, [&] {
        if (!detail::canBePath(path)) return false;
        const std::string given(path);
        const std::optional<Volume> volume =
            Volumes::current().volumeOfPath(withoutLinks(given).value_or(given));
        return volume && volume->isRemovable && !volume->isWritable && volume->isUnmountable;
    });
}

}  // namespace veltra
