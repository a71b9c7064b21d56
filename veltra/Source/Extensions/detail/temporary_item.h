// SPDX-License-Identifier: MIT
// A new item under a hidden name, until it is complete and takes the name that it is meant for.
// Nobody who looks for that name ever finds a part of it.
#pragma once

#include "veltra/platform/file_system.h"

#include <string>

namespace veltra::detail {

// How many folders in one another are followed: each level takes some hundred bytes of stack and
// two open files.
inline constexpr int kMostFolderLevels = 200;

// Removes an item, with all that is in it: nothing below `levels` of folders, nor these folders.
std::error_code removeTree(FileSystem& files, FileSystem::Handle folder, const char* name,
                           FileKind kind, int levels = kMostFolderLevels + 1);

class TemporaryItem {
public:
    TemporaryItem(FileSystem& files, FileSystem::Handle folder) noexcept
        : m_files(files), m_folder(folder) {}
    TemporaryItem(const TemporaryItem&) = delete;
    TemporaryItem& operator=(const TemporaryItem&) = delete;
    ~TemporaryItem();

    // Calls `make` with one name after the other while it answers std::errc::file_exists.
    template <typename Make>
    std::error_code make(FileKind kind, Make make) {
        std::error_code error;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            m_name = nextName();
            m_kind = kind;
            error = make(m_name.c_str());
            m_isThere = !error;
            if (error != std::errc::file_exists) break;
        }
        return error;
    }

    const std::string& name() const noexcept { return m_name; }

    // Gives the item the name that it is meant for: in place of what has it, or only if nothing
    // has.
    std::error_code replace(const char* target) noexcept;
    std::error_code putInPlace(const char* target) noexcept;

    // The folder `target` and this one take each other's place, and what was in place goes away.
    // Where the system cannot do that at once there is a moment in which nothing is in place.
    std::error_code swap(const char* target);

    void discard();

    // What could not be removed, or put back where it was: its name and why. Empty for nothing.
    const std::string& leftBehind() const noexcept { return m_leftBehind; }
    std::error_code leftBehindError() const noexcept { return m_leftBehindError; }

private:
    static constexpr int kAttempts = 100;
    static std::string nextName();

    std::error_code swapInTwoSteps(const char* target);
    void leaveBehind(const std::string& name, std::error_code error);

    FileSystem& m_files;
    const FileSystem::Handle m_folder;
    FileKind m_kind = FileKind::File;
    bool m_isThere = false;
    std::string m_name;
    std::string m_leftBehind;
    std::error_code m_leftBehindError;
};

}  // namespace veltra::detail
