// SPDX-License-Identifier: MIT
// One merge: mergePath() with its state.
#pragma once

#include "veltra/Source/Extensions/QKNSFileManager_Merge.h"
#include "veltra/Source/Extensions/detail/file_copy.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/open_item.h"

#include <string>
#include <string_view>
#include <vector>

namespace veltra::detail {

// Raises std::bad_alloc: no file or package is half done, but a new folder may lack contents, and
// the permissions and times of the source.
class FolderMerge {
public:
    FolderMerge(FileSystem& files, bool isReplacing, MergeHandler* handler) noexcept
        : m_files(files), m_isReplacing(isReplacing), m_handler(handler) {}

    bool run(std::string_view path, std::string_view toPath);

private:
    using Handle = FileSystem::Handle;
    using Reason = MergeProblem::Reason;
    using Names = std::vector<std::string>;

    struct Place {
        Handle folder;
        std::string name;
        std::string path;  // in words for the handler
    };

    // The same item on both sides. `isThere`: the target has it, as `to` says.
    struct Pair {
        Place source;
        Place target;
        FileFacts from;
        FileFacts to;
        bool isThere = false;
        bool isWhole = false;  // a package in the source, that is not part of another
    };

    void start(Pair& pair);
    void merge(Pair& pair);
    void mergeLeaf(const Pair& pair);
    void mergeFolder(const Pair& pair);
    void mergePackage(const Pair& pair);
    void mergeContents(const Pair& pair, Handle source, const Names& names, Handle target);
    void passOn(const Pair& pair, Handle folder, const FileFacts& made);
    std::error_code list(const Pair& pair, OpenItem& source, Names& names);
    std::error_code openNew(Handle folder, const char* name, OpenItem& made, FileFacts& facts);
    std::error_code place(const Pair& pair, TemporaryItem& copy, bool& isOfOtherKind);
    std::error_code lookAt(Pair& pair);
    std::error_code find(Handle folder, const FileFacts& sought, bool& isFound);
    std::error_code judge(Pair& pair, bool& isSameKind);

    void tell(const Pair& pair, Reason reason, std::error_code error = {},
              std::string_view leftBehind = {});
    void discard(const Pair& pair, TemporaryItem& copy);

    FileSystem& m_files;
    const bool m_isReplacing;
    MergeHandler* const m_handler;
    bool m_isComplete = true;
    bool m_isStopped = false;
    bool m_isInPackage = false;
    int m_depth = 0;  // of folders in folders
    bool m_isPackageIncomplete = false;
    FileFacts m_sourceRoot;
    FileFacts m_targetRoot;
};

}  // namespace veltra::detail
