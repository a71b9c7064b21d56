// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Merge.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/folder_merge.h"

namespace veltra {

MergeHandler::~MergeHandler() = default;

MergeAnswer MergeHandler::willMerge(std::string_view, std::string_view) noexcept {
    return MergeAnswer::GoOn;
}

MergeAnswer MergeHandler::couldNotMerge(const MergeProblem&) noexcept {
    return MergeAnswer::GoOn;
}

bool mergePath(std::string_view path, std::string_view toPath, bool replaceExistingFilesWithSource,
               MergeHandler* handler) noexcept {
    const NoCancellation whileFilesAreOpen;
    bool isComplete = false;
    if (isDoneUnlessOutOfMemory([&] {
            detail::FolderMerge merge(FileSystem::current(), replaceExistingFilesWithSource,
                                      handler);
            isComplete = merge.run(path, toPath);
        }))
        return isComplete;
    if (handler != nullptr)
        handler->couldNotMerge({path,
                                toPath,
                                MergeProblem::Reason::Failed,
                                std::make_error_code(std::errc::not_enough_memory),
                                {}});
    return false;
}

}  // namespace veltra
