// SPDX-License-Identifier: MIT
// Copies of one item, made as temporary items.
#pragma once

#include "veltra/Source/Extensions/detail/temporary_item.h"
#include "veltra/platform/file_system.h"

namespace veltra::detail {

struct CopySource {
    FileSystem::Handle folder;
    const char* name;
};

// What could not be passed on although the contents were: permissions or times.
struct CopyLoss {
    std::error_code error;

    void note(std::error_code one) noexcept {
        if (!error) error = one;
    }
};

// The file's contents, permissions (but not the set-id bits: the copy has another owner) and times.
// With `isFlushed` the copy is on the disk before it is said to be made. A file that is written to
// meanwhile is std::errc::device_or_resource_busy.
std::error_code copyFile(FileSystem& files, CopySource source, FileSystem::Handle targetFolder,
                         bool isFlushed, TemporaryItem& copy, CopyLoss& loss);

// The link itself, with its times.
std::error_code copyLink(FileSystem& files, CopySource source, FileSystem::Handle targetFolder,
                         const FileFacts& facts, TemporaryItem& copy, CopyLoss& loss);

}  // namespace veltra::detail
