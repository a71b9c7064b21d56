// SPDX-License-Identifier: MIT
// A file or folder that is open as long as its holder lives.
#pragma once

#include "veltra/platform/file_system.h"

#include <utility>

namespace veltra {

class OpenItem {
public:
    using Access = FileSystem::Access;
    using LastLink = FileSystem::LastLink;

    explicit OpenItem(FileSystem& files) noexcept : m_files(files) {}
    OpenItem(const OpenItem&) = delete;
    OpenItem& operator=(const OpenItem&) = delete;
    ~OpenItem() { (void)close(); }

    FileSystem::Handle handle() const noexcept { return m_handle; }

    // What was open before is closed after: the folder may be the item's own.
    std::error_code open(FileSystem::Handle folder, const char* name, Access access,
                         LastLink lastLink) noexcept {
        FileSystem::Handle opened = FileSystem::kNone;
        const std::error_code error = m_files.open(folder, name, access, lastLink, opened);
        if (!error) take(opened);
        return error;
    }

    std::error_code create(FileSystem::Handle folder, const char* name,
                           std::uint32_t permissions) noexcept {
        FileSystem::Handle opened = FileSystem::kNone;
        const std::error_code error = m_files.createFile(folder, name, permissions, opened);
        if (!error) take(opened);
        return error;
    }

    // For what was written, the last chance to fail.
    std::error_code close() noexcept {
        if (m_handle == FileSystem::kNone) return {};
        return m_files.close(std::exchange(m_handle, FileSystem::kNone));
    }

private:
    void take(FileSystem::Handle opened) noexcept {
        (void)close();
        m_handle = opened;
    }

    FileSystem& m_files;
    FileSystem::Handle m_handle = FileSystem::kNone;
};

}  // namespace veltra
