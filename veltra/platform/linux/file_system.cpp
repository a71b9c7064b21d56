// SPDX-License-Identifier: MIT
#include "veltra/platform/file_system.h"

#include "veltra/base/immortal.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/linux/descriptor.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>   // renameat2
#include <cstdlib>  // realpath
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr std::uint32_t kPermissionBits = 07777;
// What one call copies; a larger file takes several.
constexpr std::size_t kLargestPart = std::size_t{1} << 26U;  // bytes

std::error_code errorOf(int number) noexcept {
    return {number, std::generic_category()};
}

std::error_code answer(bool isDone) noexcept {
    return isDone ? std::error_code() : errorOf(errno);
}

// For calls that only some file systems know, and that refuse in several ways.
std::error_code answerOfRareCall(bool isDone) noexcept {
    if (isDone) return {};
    const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
    return isUnknown ? std::make_error_code(std::errc::not_supported) : errorOf(errno);
}

std::error_code answer(ssize_t result, std::size_t& count) noexcept {
    count = static_cast<std::size_t>(std::max<ssize_t>(result, 0));
    return answer(result >= 0);
}

template <typename Call>
auto uninterrupted(Call call) noexcept {
    decltype(call()) result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

int at(FileSystem::Handle folder) noexcept {
    return folder == FileSystem::kWorkingFolder ? AT_FDCWD : folder;
}

FileTime timeOf(const timespec& time) noexcept {
    return {std::int64_t{time.tv_sec}, static_cast<std::int32_t>(time.tv_nsec)};
}

timespec timeOf(FileTime time) noexcept {
    timespec result{};
    result.tv_sec = static_cast<time_t>(time.seconds);
    result.tv_nsec = time.nanoseconds;
    return result;
}

FileKind kindOf(mode_t mode) noexcept {
    if (S_ISREG(mode)) return FileKind::File;
    if (S_ISDIR(mode)) return FileKind::Folder;
    return S_ISLNK(mode) ? FileKind::Link : FileKind::Other;
}

int flagsFor(FileSystem::Access access) noexcept {
    switch (access) {
        case FileSystem::Access::Read:
            return O_RDONLY | O_NONBLOCK;  // so that a pipe without a writer holds up nobody
        case FileSystem::Access::List:
            return O_RDONLY | O_DIRECTORY;
        case FileSystem::Access::Pass:
            break;
    }
    return O_PATH | O_DIRECTORY;
}

class LinuxFileSystem final : public FileSystem {
public:
    std::error_code facts(Handle folder, const char* name, LastLink lastLink,
                          FileFacts& facts) noexcept override {
        struct stat status {};
        const int flags = AT_EMPTY_PATH | (lastLink == LastLink::Keep ? AT_SYMLINK_NOFOLLOW : 0);
        if (::fstatat(at(folder), name, &status, flags) != 0) return errorOf(errno);
        facts = {kindOf(status.st_mode),
                 status.st_dev,
                 status.st_ino,
                 static_cast<std::uint64_t>(status.st_size),
                 status.st_mode & kPermissionBits,
                 timeOf(status.st_atim),
                 timeOf(status.st_mtim)};
        return {};
    }

    std::error_code resolve(const char* path, std::string& resolved) noexcept override {
        const std::unique_ptr<char, decltype(&std::free)> text(::realpath(path, nullptr),
                                                               &std::free);
        if (!text) return errorOf(errno);
        return answerWithMemory([&] { resolved = text.get(); });
    }
    std::error_code readLink(Handle folder, const char* name,
                             std::string& target) noexcept override {
        std::array<char, PATH_MAX> text{};  // the longest that there can be
        const ssize_t length = ::readlinkat(at(folder), name, text.data(), text.size());
        if (length < 0) return errorOf(errno);
        return answerWithMemory(
            [&] { target.assign(text.data(), static_cast<std::size_t>(length)); });
    }

    std::error_code open(Handle folder, const char* name, Access access, LastLink lastLink,
                         Handle& opened) noexcept override {
        const int flags =
            flagsFor(access) | O_CLOEXEC | (lastLink == LastLink::Keep ? O_NOFOLLOW : 0);
        opened = uninterrupted([&] { return ::openat(at(folder), name, flags); });
        return answer(opened >= 0);
    }

    std::error_code close(Handle handle) noexcept override {
        // An interrupted close has closed on Linux.
        return answer(::close(handle) == 0 || errno == EINTR);
    }

    std::error_code createFile(Handle folder, const char* name, std::uint32_t permissions,
                               Handle& opened) noexcept override {
        opened = uninterrupted([&] {
            return ::openat(at(folder), name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                            static_cast<mode_t>(permissions));
        });
        return answer(opened >= 0);
    }

    std::error_code makeFolder(Handle folder, const char* name,
                               std::uint32_t permissions) noexcept override {
        return answer(::mkdirat(at(folder), name, static_cast<mode_t>(permissions)) == 0);
    }

    std::error_code makeLink(Handle folder, const char* name,
                             const char* target) noexcept override {
        return answer(::symlinkat(target, at(folder), name) == 0);
    }

    std::error_code list(Handle folder, std::vector<std::string>& names) noexcept override {
        Descriptor own(uninterrupted([&] { return ::openat(folder, ".", O_RDONLY | O_CLOEXEC); }));
        if (!own.isOpen()) return errorOf(errno);
        const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(own.number()), ::closedir);
        if (!entries) return errorOf(errno);
        own.release();
        int error = 0;
        const std::error_code shortage = answerWithMemory([&] {
            for (;;) {
                errno = 0;
                // Only this thread has the folder's stream. NOLINTNEXTLINE(concurrency-mt-unsafe)
                const dirent* const entry = ::readdir(entries.get());
                error = errno;
                if (entry == nullptr) break;
                const std::string_view name = entry->d_name;
                if (name != "." && name != "..") names.emplace_back(name);
            }
        });
        return shortage ? shortage : answerOf(error);
    }

    std::error_code read(Handle file, std::span<std::byte> bytes,
                         std::size_t& count) noexcept override {
        return answer(uninterrupted([&] { return ::read(file, bytes.data(), bytes.size()); }),
                      count);
    }

    std::error_code write(Handle file, std::span<const std::byte> bytes,
                          std::size_t& count) noexcept override {
        return answer(uninterrupted([&] { return ::write(file, bytes.data(), bytes.size()); }),
                      count);
    }

    std::error_code copyPart(Handle from, Handle to, std::size_t& count) noexcept override {
        const ssize_t result = uninterrupted(
            [&] { return ::copy_file_range(from, nullptr, to, nullptr, kLargestPart, 0); });
        count = static_cast<std::size_t>(std::max<ssize_t>(result, 0));
        if (result < 0 && errno == EXDEV) return std::make_error_code(std::errc::not_supported);
        return answerOfRareCall(result >= 0);
    }

    std::error_code flush(Handle file) noexcept override {
        return answerOfRareCall(uninterrupted([&] { return ::fsync(file); }) == 0);
    }

    std::error_code setPermissions(Handle handle, std::uint32_t permissions) noexcept override {
        return answer(::fchmod(handle, static_cast<mode_t>(permissions)) == 0);
    }

    std::error_code setTimes(Handle folder, const char* name, FileTime accessed,
                             FileTime modified) noexcept override {
        const std::array<timespec, 2> times{timeOf(accessed), timeOf(modified)};
        if (*name == '\0') return answer(::futimens(folder, times.data()) == 0);
        return answer(::utimensat(at(folder), name, times.data(), AT_SYMLINK_NOFOLLOW) == 0);
    }

    std::error_code rename(Handle folder, const char* name, const char* newName,
                           Collision collision) noexcept override {
        const int place = at(folder);
        if (collision == Collision::Replace)
            return answer(::renameat(place, name, place, newName) == 0);
        return answerOfRareCall(
            ::renameat2(place, name, place, newName,
                        collision == Collision::Refuse ? RENAME_NOREPLACE : RENAME_EXCHANGE) == 0);
    }

    std::error_code addName(Handle folder, const char* name,
                            const char* newName) noexcept override {
        return answer(::linkat(at(folder), name, at(folder), newName, 0) == 0);
    }

    std::error_code remove(Handle folder, const char* name, FileKind kind) noexcept override {
        return answer(::unlinkat(at(folder), name, kind == FileKind::Folder ? AT_REMOVEDIR : 0) ==
                      0);
    }

    std::string homeFolder(const std::string& user) noexcept override {
        return unlessOutOfMemory(std::string(), [&] {
            const char* const home = user.empty() ? environmentVariable("HOME") : nullptr;
            if (home != nullptr && *home == '/') return std::string(home);
            std::array<char, 16384> room{};
            passwd entry{};
            passwd* found = nullptr;
            if (user.empty())
                ::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found);
            else
                ::getpwnam_r(user.c_str(), &entry, room.data(), room.size(), &found);
            return std::string(found != nullptr ? found->pw_dir : "");
        });
    }

private:
    static std::error_code answerOf(int error) noexcept {
        return error == 0 ? std::error_code() : errorOf(error);
    }

    template <typename Work>
    static std::error_code answerWithMemory(Work work) noexcept {
        if (isDoneUnlessOutOfMemory(work)) return {};
        return std::make_error_code(std::errc::not_enough_memory);
    }
};

}  // namespace

FileSystem& platformFileSystem() noexcept {
    static const Immortal<LinuxFileSystem> files;
    return *files;
}

}  // namespace veltra
