// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/temporary_item.h"

#include "veltra/base/number_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/open_item.h"
#include "veltra/platform/process.h"

#include <atomic>

namespace veltra::detail {

using Collision = FileSystem::Collision;

std::error_code removeTree(FileSystem& files, FileSystem::Handle folder, const char* name,
                           FileKind kind, int levels) {
    if (kind != FileKind::Folder) return files.remove(folder, name, kind);
    if (levels == 0) return std::make_error_code(std::errc::filename_too_long);
    OpenItem opened(files);
    std::error_code error =
        opened.open(folder, name, OpenItem::Access::List, OpenItem::LastLink::Keep);
    if (error) return error;
    // A folder that nobody may write to keeps what is in it.
    constexpr std::uint32_t kOwnersOwn = 0700;
    (void)files.setPermissions(opened.handle(), kOwnersOwn);
    std::vector<std::string> names;
    error = files.list(opened.handle(), names);
    for (const std::string& inside : names) {
        FileFacts facts;
        std::error_code one =
            files.facts(opened.handle(), inside.c_str(), OpenItem::LastLink::Keep, facts);
        if (!one) one = removeTree(files, opened.handle(), inside.c_str(), facts.kind, levels - 1);
        if (!error) error = one;
    }
    return error ? error : files.remove(folder, name, kind);
}

TemporaryItem::~TemporaryItem() {
    // Only lack of memory leads here with the item still there.
    (void)isDoneUnlessOutOfMemory([this] { discard(); });
}

std::string TemporaryItem::nextName() {
    static std::atomic<std::uint32_t> count{0};
    std::string name = ".veltra-";
    name += NumberText(Process::current().processId()).view();
    name += '-';
    name += NumberText(count.fetch_add(1, std::memory_order_relaxed)).view();
    return name;
}

std::error_code TemporaryItem::replace(const char* target) noexcept {
    const std::error_code error =
        m_files.rename(m_folder, m_name.c_str(), target, Collision::Replace);
    if (!error) m_isThere = false;
    return error;
}

std::error_code TemporaryItem::putInPlace(const char* target) noexcept {
    const std::error_code error =
        m_files.rename(m_folder, m_name.c_str(), target, Collision::Refuse);
    if (!error) m_isThere = false;
    if (error != std::errc::not_supported) return error;
    // A folder takes the place of an empty folder only.
    if (m_kind == FileKind::Folder) return replace(target);
    // With both names it is in place; discard() takes the first one away.
    return m_files.addName(m_folder, m_name.c_str(), target);
}

std::error_code TemporaryItem::swap(const char* target) {
    const std::error_code error =
        m_files.rename(m_folder, m_name.c_str(), target, Collision::Exchange);
    if (error == std::errc::not_supported) return swapInTwoSteps(target);
    if (!error) discard();
    return error;
}

std::error_code TemporaryItem::swapInTwoSteps(const char* target) {
    TemporaryItem before(m_files, m_folder);
    std::error_code error = before.make(FileKind::Folder, [&](const char* name) {
        return m_files.rename(m_folder, target, name, Collision::Replace);
    });
    if (error) return error;
    error = replace(target);
    if (!error) {
        before.discard();
    } else if (const std::error_code stuck = before.replace(target)) {
        before.m_isThere = false;  // it must not be lost
        before.leaveBehind(before.m_name, stuck);
    }
    if (!before.m_leftBehind.empty()) leaveBehind(before.m_leftBehind, before.m_leftBehindError);
    return error;
}

void TemporaryItem::discard() {
    if (!m_isThere) return;
    m_isThere = false;
    const std::error_code error = removeTree(m_files, m_folder, m_name.c_str(), m_kind);
    if (error) leaveBehind(m_name, error);
}

void TemporaryItem::leaveBehind(const std::string& name, std::error_code error) {
    m_leftBehind = name;
    m_leftBehindError = error;
}

}  // namespace veltra::detail
