// SPDX-License-Identifier: MIT
// One file that several processes read and replace as a whole.
//
// Readers need no lock: the file is only ever replaced by renaming a complete one over it. Who
// reads, changes and replaces it holds the lock meanwhile: a file ".<name>.lock" beside it, which
// stays there (removing it would let two processes lock two different files of that name).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/types.h>

namespace veltra {

// The calls on which the safety of the file rests, so that tests can let each of them fail.
struct FileCalls {
    ssize_t (*read)(int descriptor, void* buffer, std::size_t count);
    ssize_t (*write)(int descriptor, const void* buffer, std::size_t count);
    int (*fsync)(int descriptor);
    int (*rename)(const char* from, const char* to);
};

extern const FileCalls kSystemFileCalls;

// Made for one operation, on one thread; its functions and constructor throw std::bad_alloc.
class PreferencesFile {
public:
    static constexpr std::size_t kMaximumSize = std::size_t{64} << 20U;  // bytes that are read

    // A symbolic link is followed: what is read, replaced and moved is its target.
    PreferencesFile(std::string path, const FileCalls& calls);
    PreferencesFile(const PreferencesFile&) = delete;
    PreferencesFile& operator=(const PreferencesFile&) = delete;
    ~PreferencesFile();  // gives the lock back

    // std::errc::no_such_file_or_directory when there is none. Only regular files are read.
    std::error_code read(std::string& text) const;

    // Makes the folder if need be (mode 0700). Waits two seconds at most, then answers
    // std::errc::timed_out. Where the file system knows no locks the file counts as locked.
    std::error_code lock();
    bool isLocked() const { return m_isLocked; }

    // The old file stands untouched until the new one is complete on the disk. A new file has mode
    // 0600, a replaced one keeps mode and owner. REQUIRES: locked.
    std::error_code replace(std::string_view text) const;

    // Renames the file to "<name>.damaged-<n>" with the first free n from 1. REQUIRES: locked.
    std::error_code setAside(std::string& keptAs) const;

private:
    void makeFolders() const;
    std::error_code writeThrough(int descriptor, std::string_view text) const;

    std::string m_path;
    std::string m_folder;
    const FileCalls& m_calls;
    std::error_code m_pathError;
    int m_lockDescriptor = -1;
    bool m_isLocked = false;
};

}  // namespace veltra
