// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/folder_merge.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/file_package.h"
#include "veltra/Source/Extensions/detail/temporary_item.h"
#include "veltra/platform/open_item.h"

#include <algorithm>

namespace veltra::detail {

namespace {

using Access = FileSystem::Access;
using LastLink = FileSystem::LastLink;

constexpr std::uint32_t kOwnersOwn = 0700;
constexpr std::uint32_t kPassedOn = 01777;     // of a folder's permissions
constexpr std::uint32_t kSetGroupBit = 02000;  // a new folder has it from the folder it is made in

struct SplitPath {
    std::string folder;
    std::string name;
};

// A path that does not end in a name (".." or "/") is a folder, and its own "." in it.
SplitPath split(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "..") return {std::string(path), "."};
    if (slash == std::string_view::npos) return {".", std::string(name)};
    return {std::string(path.substr(0, std::max<std::size_t>(slash, 1))), std::string(name)};
}

}  // namespace

bool FolderMerge::run(std::string_view path, std::string_view toPath) {
    Pair pair{{FileSystem::kNone, {}, std::string(path)},
              {FileSystem::kNone, {}, std::string(toPath)},
              {},
              {}};
    if (!canBePath(path) || !canBePath(toPath)) {
        tell(pair, Reason::Failed, std::make_error_code(std::errc::invalid_argument));
        return false;
    }
    SplitPath from = split(path);
    SplitPath to = split(toPath);
    pair.source.name = std::move(from.name);
    pair.target.name = std::move(to.name);
    OpenItem source(m_files);
    OpenItem target(m_files);
    std::error_code error = source.open(FileSystem::kWorkingFolder, from.folder.c_str(),
                                        Access::Pass, LastLink::Follow);
    if (!error)
        error = target.open(FileSystem::kWorkingFolder, to.folder.c_str(), Access::Pass,
                            LastLink::Follow);
    pair.source.folder = source.handle();
    pair.target.folder = target.handle();
    if (error)
        tell(pair, Reason::Failed, error);
    else
        start(pair);
    return m_isComplete;
}

void FolderMerge::start(Pair& pair) {
    std::error_code error = lookAt(pair);
    if (!error && pair.from.kind == FileKind::Folder) {
        bool isInside = pair.isThere && pair.from.isSameItem(pair.to);
        if (!isInside) error = find(pair.target.folder, pair.from, isInside);
        if (isInside) return tell(pair, Reason::InsideItself);
    }
    if (error) return tell(pair, Reason::Failed, error);
    m_sourceRoot = pair.from;
    m_targetRoot = pair.isThere ? pair.to : FileFacts();
    merge(pair);
}

// Whether `sought` is the open folder, or one of those that it lies in.
std::error_code FolderMerge::find(Handle folder, const FileFacts& sought, bool& isFound) {
    OpenItem at(m_files);
    FileFacts here;
    std::error_code error = at.open(folder, ".", Access::Pass, LastLink::Keep);
    if (!error) error = m_files.facts(at.handle(), "", LastLink::Keep, here);
    while (!error && !here.isSameItem(sought)) {
        const FileFacts below = here;
        error = at.open(at.handle(), "..", Access::Pass, LastLink::Keep);
        if (!error) error = m_files.facts(at.handle(), "", LastLink::Keep, here);
        if (!error && here.isSameItem(below)) return {};  // above "/" is "/"
    }
    isFound = !error;
    return error;
}

std::error_code FolderMerge::lookAt(Pair& pair) {
    std::error_code error =
        m_files.facts(pair.source.folder, pair.source.name.c_str(), LastLink::Keep, pair.from);
    if (error) return error;
    error = m_files.facts(pair.target.folder, pair.target.name.c_str(), LastLink::Keep, pair.to);
    pair.isThere = !error;
    return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}

// What kind of thing the pair is, and whether the target's could be replaced by the source's.
// Within a package everything is part of the whole.
std::error_code FolderMerge::judge(Pair& pair, bool& isSameKind) {
    isSameKind = !pair.isThere || pair.from.kind == pair.to.kind;
    if (pair.from.kind != FileKind::Folder || m_isInPackage) return {};
    const auto isPackage = [this](const Place& place, bool& answer) {
        return judgePackage(m_files, place.folder, place.name, place.path, answer);
    };
    std::error_code error = isPackage(pair.source, pair.isWhole);
    if (error || !pair.isThere || !isSameKind) return error;
    bool isTargetWhole = false;
    error = isPackage(pair.target, isTargetWhole);
    isSameKind = isTargetWhole == pair.isWhole;
    return error;
}

void FolderMerge::merge(Pair& pair) {
    if (m_isStopped) return;
    if (m_handler != nullptr &&
        m_handler->willMerge(pair.source.path, pair.target.path) == MergeAnswer::Stop) {
        m_isStopped = true;
        m_isComplete = false;
        return;
    }
    bool isSameKind = false;
    std::error_code error = lookAt(pair);
    if (!error) error = judge(pair, isSameKind);
    if (error) return tell(pair, Reason::Failed, error);
    if (pair.from.kind == FileKind::Other) return tell(pair, Reason::NotCopied);
    if (!isSameKind) return tell(pair, Reason::KindsDiffer);
    if (pair.from.kind != FileKind::Folder) return mergeLeaf(pair);
    if ((pair.isThere && pair.to.isSameItem(m_sourceRoot)) || pair.from.isSameItem(m_targetRoot))
        return tell(pair, Reason::InsideItself);
    if (pair.isWhole) return mergePackage(pair);
    mergeFolder(pair);
}

void FolderMerge::mergeLeaf(const Pair& pair) {
    if (pair.isThere && (!m_isReplacing || pair.from.isSameItem(pair.to))) return;
    TemporaryItem copy(m_files, pair.target.folder);
    CopyLoss loss;
    bool isOfOtherKind = false;
    const CopySource source{pair.source.folder, pair.source.name.c_str()};
    std::error_code error =
        pair.from.kind == FileKind::Link
            ? copyLink(m_files, source, pair.target.folder, pair.from, copy, loss)
            // What is new here is still in the source when the power fails; what is replaced is
            // not.
            : copyFile(m_files, source, pair.target.folder, pair.isThere || m_isInPackage, copy,
                       loss);
    if (!error) error = place(pair, copy, isOfOtherKind);
    discard(pair, copy);
    if (isOfOtherKind) return tell(pair, Reason::KindsDiffer);
    if (error) return tell(pair, Reason::Failed, error);
    if (loss.error) tell(pair, Reason::AttributesNotKept, loss.error);
}

std::error_code FolderMerge::place(const Pair& pair, TemporaryItem& copy, bool& isOfOtherKind) {
    const char* const name = pair.target.name.c_str();
    if (pair.isThere) return copy.replace(name);
    const std::error_code error = copy.putInPlace(name);
    if (error != std::errc::file_exists) return error;
    // Somebody was faster.
    if (!m_isReplacing) return {};
    FileFacts now;
    const std::error_code unknown = m_files.facts(pair.target.folder, name, LastLink::Keep, now);
    if (unknown) return unknown;
    isOfOtherKind = now.kind != pair.from.kind || now.kind == FileKind::Folder;
    return isOfOtherKind ? std::error_code() : copy.replace(name);
}

void FolderMerge::mergeFolder(const Pair& pair) {
    OpenItem source(m_files);
    OpenItem target(m_files);
    Names names;
    const char* const name = pair.target.name.c_str();
    std::error_code error = list(pair, source, names);
    if (error) return tell(pair, Reason::Failed, error);
    bool isNew = !pair.isThere;
    if (isNew) {
        error = m_files.makeFolder(pair.target.folder, name, kOwnersOwn);
        if (error && error != std::errc::file_exists) return tell(pair, Reason::Failed, error);
        isNew = !error;
    }
    FileFacts made;
    error = isNew ? openNew(pair.target.folder, name, target, made)
                  : target.open(pair.target.folder, name, Access::Pass, LastLink::Keep);
    if (error) {
        if (isNew) (void)m_files.remove(pair.target.folder, name, FileKind::Folder);
        return tell(pair, Reason::Failed, error);
    }
    mergeContents(pair, source.handle(), names, target.handle());
    if (isNew) passOn(pair, target.handle(), made);
}

void FolderMerge::mergePackage(const Pair& pair) {
    if (pair.isThere && (!m_isReplacing || pair.from.isSameItem(pair.to))) return;
    // What is replaced goes away with all that is in it.
    bool isInTarget = false;
    std::error_code error;
    if (pair.isThere) error = find(pair.source.folder, pair.to, isInTarget);
    if (isInTarget) return tell(pair, Reason::InsideItself);
    OpenItem source(m_files);
    OpenItem target(m_files);
    Names names;
    FileFacts made;
    TemporaryItem copy(m_files, pair.target.folder);
    if (!error) error = list(pair, source, names);
    if (!error) {
        error = copy.make(FileKind::Folder, [&](const char* name) {
            return m_files.makeFolder(pair.target.folder, name, kOwnersOwn);
        });
    }
    if (!error) error = openNew(pair.target.folder, copy.name().c_str(), target, made);
    if (!error) {
        m_isInPackage = true;
        mergeContents(pair, source.handle(), names, target.handle());
        passOn(pair, target.handle(), made);
        m_isInPackage = false;
        const bool isIncomplete = std::exchange(m_isPackageIncomplete, false) || m_isStopped;
        if (isIncomplete) {
            discard(pair, copy);
            return tell(pair, Reason::PackageIncomplete);
        }
        const char* const name = pair.target.name.c_str();
        error = pair.isThere ? copy.swap(name) : copy.putInPlace(name);
        // Somebody was faster, and is to be kept.
        if (error == std::errc::file_exists && !m_isReplacing) error = {};
    }
    discard(pair, copy);
    if (error) tell(pair, Reason::Failed, error);
}

std::error_code FolderMerge::list(const Pair& pair, OpenItem& source, Names& names) {
    std::error_code error =
        source.open(pair.source.folder, pair.source.name.c_str(), Access::List, LastLink::Keep);
    if (!error) error = m_files.list(source.handle(), names);
    std::sort(names.begin(), names.end());
    return error;
}

std::error_code FolderMerge::openNew(Handle folder, const char* name, OpenItem& made,
                                     FileFacts& facts) {
    std::error_code error = made.open(folder, name, Access::List, LastLink::Keep);
    if (!error) error = m_files.facts(made.handle(), "", LastLink::Keep, facts);
    if (!error && m_targetRoot.number == 0) m_targetRoot = facts;
    return error;
}

void FolderMerge::mergeContents(const Pair& pair, Handle source, const Names& names,
                                Handle target) {
    if (m_depth == kMostFolderLevels)
        return tell(pair, Reason::Failed, std::make_error_code(std::errc::filename_too_long));
    ++m_depth;
    for (const std::string& name : names) {
        Pair inside{{source, name, pathIn(pair.source.path, name)},
                    {target, name, pathIn(pair.target.path, name)},
                    {},
                    {}};
        merge(inside);
    }
    --m_depth;
}

void FolderMerge::passOn(const Pair& pair, Handle folder, const FileFacts& made) {
    CopyLoss loss;
    loss.note(m_files.setPermissions(
        folder, (pair.from.permissions & kPassedOn) | (made.permissions & kSetGroupBit)));
    loss.note(m_files.setTimes(folder, "", pair.from.accessed, pair.from.modified));
    if (loss.error) tell(pair, Reason::AttributesNotKept, loss.error);
}

void FolderMerge::discard(const Pair& pair, TemporaryItem& copy) {
    copy.discard();
    if (copy.leftBehind().empty()) return;
    tell(pair, Reason::LeftBehind, copy.leftBehindError(),
         pathIn(split(pair.target.path).folder, copy.leftBehind()));
}

void FolderMerge::tell(const Pair& pair, Reason reason, std::error_code error,
                       std::string_view leftBehind) {
    m_isComplete = false;
    if (m_isInPackage && reason != Reason::AttributesNotKept) m_isPackageIncomplete = true;
    if (m_handler != nullptr && !m_isStopped &&
        m_handler->couldNotMerge({pair.source.path, pair.target.path, reason, error, leftBehind}) ==
            MergeAnswer::Stop)
        m_isStopped = true;
}

}  // namespace veltra::detail
