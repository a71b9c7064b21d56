// SPDX-License-Identifier: MIT
// The steps that file operations are made of, each about one call of the system. The operations
// themselves stand in Source/Extensions/; this is what a port supplies for them, and the place
// where a test makes a step fail.
//
// An item is named by an open folder and its name there: whoever holds the folder open works in
// that folder, also when somebody renames it or puts a link in its place. Names are bytes, without
// a NUL.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace veltra {

class FileSystem;
extern template class VELTRA_EXPORT Installable<FileSystem>;

// What stands at a name. A link is a symbolic one; other are pipes, sockets and devices.
enum class FileKind : std::uint8_t { File, Folder, Link, Other };

// A moment of civil time, as file systems keep it.
struct FileTime {
    std::int64_t seconds = 0;      // since 1970
    std::int32_t nanoseconds = 0;  // 0 to 999,999,999, later than `seconds`

    // Whether they are the same moment, to the nanosecond.
    friend bool operator==(const FileTime&, const FileTime&) = default;
};

// What the system keeps about one item besides its name and contents.
struct FileFacts {
    FileKind kind = FileKind::Other;  // of the item itself
    std::uint64_t device = 0;         // with `number`: which item this is, under whatever name
    std::uint64_t number = 0;         // the item's own on its device
    std::uint64_t size = 0;           // bytes
    std::uint32_t permissions = 0;    // the lower 12 bits of a POSIX mode
    FileTime accessed;                // when it was last read
    FileTime modified;                // when its contents last changed

    // Whether both are facts of one item, whatever its names, as long as it exists.
    bool isSameItem(const FileFacts& other) const noexcept {
        return device == other.device && number == other.number;
    }
};

// Each function does its step once and returns the error of the system, none when it succeeded.
// Without memory it returns std::errc::not_enough_memory.
// Thread: any. Realtime-safe: no.
class VELTRA_EXPORT FileSystem : public Installable<FileSystem> {
public:
    using Handle = int;                  // an open file or folder
    static constexpr Handle kNone = -1;  // no file and no folder
    // As the folder: names are relative to the process's working folder, or begin with "/".
    static constexpr Handle kWorkingFolder = -2;

    // What a link in the last step of a name stands for: what it leads to, or itself.
    enum class LastLink : std::uint8_t { Follow, Keep };

    // What a file or folder is opened for.
    enum class Access : std::uint8_t {
        Read,  // of a file
        List,  // of a folder
        Pass,  // of a folder: only as the place of other items
    };

    // What becomes of an item that has the new name already: it is replaced, it is kept and the
    // call fails with std::errc::file_exists, or the two swap names.
    enum class Collision : std::uint8_t { Replace, Refuse, Exchange };

    virtual ~FileSystem();

    // What stands there; an empty name means the folder, or the open file, itself.
    virtual std::error_code facts(Handle folder, const char* name, LastLink lastLink,
                                  FileFacts& facts) noexcept = 0;
    virtual std::error_code readLink(Handle folder, const char* name,
                                     std::string& target) noexcept = 0;

    // The path of what exists there, from "/", without links and without "." and "..".
    virtual std::error_code resolve(const char* path, std::string& resolved) noexcept = 0;

    // Each handle is closed by close(), which closes it also where it returns an error.
    virtual std::error_code open(Handle folder, const char* name, Access access, LastLink lastLink,
                                 Handle& opened) noexcept = 0;
    virtual std::error_code close(Handle handle) noexcept = 0;

    // Make something new; std::errc::file_exists where there is anything of that name, a link
    // included. The system may take permissions away (umask).
    virtual std::error_code createFile(Handle folder, const char* name, std::uint32_t permissions,
                                       Handle& opened) noexcept = 0;
    virtual std::error_code makeFolder(Handle folder, const char* name,
                                       std::uint32_t permissions) noexcept = 0;
    virtual std::error_code makeLink(Handle folder, const char* name,
                                     const char* target) noexcept = 0;

    // All names in a folder that is open to be listed, without "." and "..", in no order.
    virtual std::error_code list(Handle folder, std::vector<std::string>& names) noexcept = 0;

    // From and to where the file was read or written last. `count` is how many bytes it was, 0 at
    // the end of the file. copyPart() may be refused as std::errc::not_supported.
    virtual std::error_code read(Handle file, std::span<std::byte> bytes,
                                 std::size_t& count) noexcept = 0;
    virtual std::error_code write(Handle file, std::span<const std::byte> bytes,
                                  std::size_t& count) noexcept = 0;
    virtual std::error_code copyPart(Handle from, Handle to, std::size_t& count) noexcept = 0;
    // Returns when the file's contents are on the disk; may be refused likewise.
    virtual std::error_code flush(Handle file) noexcept = 0;

    // The permissions of an open file or folder; the process's umask takes none of them away.
    virtual std::error_code setPermissions(Handle handle, std::uint32_t permissions) noexcept = 0;
    // Names as facts() does; a link gets the times itself.
    virtual std::error_code setTimes(Handle folder, const char* name, FileTime accessed,
                                     FileTime modified) noexcept = 0;

    // Within one folder, in one step that nobody sees half. Refuse and Exchange may be refused as
    // std::errc::not_supported.
    virtual std::error_code rename(Handle folder, const char* name, const char* newName,
                                   Collision collision) noexcept = 0;
    // A second name for a file or link; std::errc::file_exists as above.
    virtual std::error_code addName(Handle folder, const char* name,
                                    const char* newName) noexcept = 0;
    // A folder only when it is empty.
    virtual std::error_code remove(Handle folder, const char* name, FileKind kind) noexcept = 0;

    // The home folder of a user of the machine, of the process's own for the empty name. Empty when
    // there is none.
    virtual std::string homeFolder(const std::string& user) noexcept = 0;
};

}  // namespace veltra
