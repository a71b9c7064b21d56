// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"
#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/file_package.h"
#include "veltra/Source/Extensions/detail/path_extension.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace veltra {

namespace {

using LastLink = FileSystem::LastLink;

constexpr std::array<std::string_view, 8> kPackageExtensions = {
    "app", "bundle", "component", "framework", "lv2", "plugin", "vst", "vst3",
};

std::atomic<FilePackageRule> packageRule{nullptr};

}  // namespace

std::error_code detail::judgePackage(FileSystem& files, FileSystem::Handle folder,
                                     const std::string& name, const std::string& path,
                                     bool& isPackage) {
    if (const FilePackageRule rule = packageRule.load(std::memory_order_acquire)) {  // with below
        isPackage = rule(path);
        return {};
    }
    const std::string_view extension = detail::extensionOf(path);
    isPackage =
        std::any_of(kPackageExtensions.begin(), kPackageExtensions.end(),
                    [&](std::string_view one) { return detail::isSameExtension(one, extension); });
    if (isPackage) return {};
    FileFacts contents;
    const std::error_code error =
        files.facts(folder, detail::pathIn(name, "Contents").c_str(), LastLink::Keep, contents);
    isPackage = !error && contents.kind == FileKind::Folder;
    return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}

bool isFilePackageAtPath(std::string_view path) noexcept {
    return detail::answerAboutFiles(false, [&] {
        if (!detail::canBePath(path)) return false;
        FileSystem& files = FileSystem::current();
        const std::string text(path);
        FileFacts facts;
        bool isPackage = false;
        return !files.facts(FileSystem::kWorkingFolder, text.c_str(), LastLink::Keep, facts) &&
               facts.kind == FileKind::Folder &&
               !detail::judgePackage(files, FileSystem::kWorkingFolder, text, text, isPackage) &&
               isPackage;
    });
}

FilePackageRule setFilePackageRule(FilePackageRule rule) noexcept {
    return packageRule.exchange(rule, std::memory_order_acq_rel);  // with above
}

}  // namespace veltra
