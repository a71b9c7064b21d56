// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSURL_Extensions.h"

#include "veltra/Source/Extensions/detail/data_folders.h"
#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/file_url.h"
#include "veltra/base/number_text.h"
#include "veltra/platform/process.h"
#include "veltra/platform/volumes.h"

#include <filesystem>
#include <optional>

namespace veltra {

namespace {

using std::filesystem::path;

bool isBelow(const path& item, const path& folder) {
    const path relative = item.lexically_relative(folder);
    return !relative.empty() && relative != "." && *relative.begin() != "..";
}

// The links and steps back of as much of it as exists are followed.
path withoutLinks(const path& item) {
    path rest;
    for (path start = item;; start = start.parent_path()) {
        std::string resolved;
        const std::error_code error = detail::canonicalPath(start.string(), resolved);
        if (!error) return (rest.empty() ? path(resolved) : resolved / rest).lexically_normal();
        const bool isMissing =
            error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
        if (!isMissing || !start.has_parent_path() || !start.has_relative_path())
            return item.lexically_normal();
        rest = rest.empty() ? start.filename() : start.filename() / rest;
    }
}

// The volume of the first folder above the item that exists.
std::optional<Volume> volumeAbove(path item) {
    while (item.has_relative_path()) {
        item = item.parent_path();
        if (std::optional<Volume> volume = Volumes::current().volumeOfPath(item.string()))
            return volume;
    }
    return std::nullopt;
}

}  // namespace

bool isInTrash(std::string_view url) noexcept {
    return detail::answerAboutFiles(false, [&] {
        const std::optional<std::string> text = detail::pathOfFileUrl(url);
        if (!text || text->size() > detail::kLongestPath) return false;
        // A link in the trash is there itself, wherever it leads.
        path named(*text);
        if (!named.has_filename()) named = named.parent_path();
        const path name = named.filename();
        const path item = name == "." || name == ".." ? withoutLinks(named)
                                                      : withoutLinks(named.parent_path()) / name;
        const std::string user = detail::userDataFolder();
        if (!user.empty() && isBelow(item, withoutLinks(path(user) / "Trash/files"))) return true;
        const std::optional<Volume> volume = volumeAbove(item);
        if (!volume) return false;
        const std::string number(NumberText(Process::current().effectiveUserId()).view());
        const path top(volume->path);
        return isBelow(item, top / ".Trash" / number / "files") ||
               isBelow(item, top / (".Trash-" + number) / "files");
    });
}

}  // namespace veltra
