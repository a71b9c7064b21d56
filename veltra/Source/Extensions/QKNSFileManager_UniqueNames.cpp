// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"
#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/base/number_text.h"
#include "veltra/base/whole_characters.h"
#include "veltra/platform/open_item.h"

#include <system_error>

namespace veltra {

namespace {

constexpr std::size_t kLongestName = 255;  // bytes, in all file systems that matter
constexpr std::uint32_t kFilePermissions = 0666;
constexpr std::uint32_t kHighestNumber = 1'000'000;

// "Take.wav" for 1, "Take 7.wav" for 7.
std::string numbered(std::string_view name, std::uint32_t number, std::string_view extension) {
    std::string end;
    if (number > 1) end.append(" ").append(NumberText(number).view());
    if (!extension.empty()) end.append(".").append(extension);
    const std::size_t room = kLongestName - std::min(kLongestName, end.size());
    if (name.size() > room) name = wholeCharacters(name.substr(0, room));
    return std::string(name) + end;
}

// The first name for which `isTaken` says no. `isTaken` answers an error to give up.
template <typename IsTaken>
std::optional<std::string> firstFree(std::string_view name, std::string_view extension,
                                     IsTaken isTaken) {
    constexpr std::string_view kForbidden("/\0", 2);
    if (name.empty() || name.find_first_of(kForbidden) != std::string_view::npos ||
        extension.find_first_of(kForbidden) != std::string_view::npos)
        return std::nullopt;
    for (std::uint32_t number = 1; number <= kHighestNumber; ++number) {
        std::string candidate = numbered(name, number, extension);
        const std::error_code answer = isTaken(candidate.c_str());
        if (!answer) return candidate;
        if (answer != std::errc::file_exists) return std::nullopt;
    }
    return std::nullopt;
}

bool canPass(OpenItem& folder, std::string_view path) {
    return detail::canBePath(path) &&
           !folder.open(FileSystem::kWorkingFolder, std::string(path).c_str(),
                        OpenItem::Access::Pass, OpenItem::LastLink::Follow);
}

}  // namespace

std::optional<std::string> uniqueFileNameAtPath(std::string_view path,
                                                std::string_view withFileName,
                                                std::string_view andExtension) noexcept {
    using Answer = std::optional<std::string>;
    return detail::answerAboutFiles(Answer(), [&]() -> Answer {
        FileSystem& files = FileSystem::current();
        OpenItem folder(files);
        if (!canPass(folder, path)) return std::nullopt;
        return firstFree(withFileName, andExtension, [&](const char* name) {
            FileFacts facts;
            const std::error_code error =
                files.facts(folder.handle(), name, OpenItem::LastLink::Keep, facts);
            if (error == std::errc::no_such_file_or_directory) return std::error_code();
            return error ? error : std::make_error_code(std::errc::file_exists);
        });
    });
}

std::optional<std::string> createUniqueFile(std::string_view path, std::string_view withFileName,
                                            std::string_view andExtension) noexcept {
    using Answer = std::optional<std::string>;
    return detail::answerAboutFiles(Answer(), [&]() -> Answer {
        FileSystem& files = FileSystem::current();
        OpenItem folder(files);
        if (!canPass(folder, path)) return std::nullopt;
        OpenItem file(files);
        return firstFree(withFileName, andExtension, [&](const char* name) {
            return file.create(folder.handle(), name, kFilePermissions);
        });
    });
}

}  // namespace veltra
