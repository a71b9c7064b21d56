// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/preferences_file.h"

#include "veltra/platform/linux/descriptor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace veltra {

const FileCalls kSystemFileCalls{::read, ::write, ::fsync, ::rename};

namespace {

constexpr int kMaximumLinks = 40;
constexpr int kLockAttempts = 1000;
constexpr timespec kLockPause{0, 2'000'000};
constexpr int kMaximumDamagedFiles = 9999;

std::error_code errorOf(int number) noexcept {
    return {number, std::generic_category()};
}

std::error_code lastError() noexcept {
    return errorOf(errno);
}

// With the last slash; empty for the working folder.
std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// Only the last step of `path` matters: the kernel follows the others by itself.
std::error_code followLinks(std::string& path) {
    std::array<char, PATH_MAX> buffer{};
    for (int links = 0; links < kMaximumLinks; ++links) {
        const ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
        if (length < 0) return {};  // no link, or nothing there: whoever opens it will tell
        const std::string_view target(buffer.data(), static_cast<std::size_t>(length));
        path = target.starts_with('/') ? std::string(target) : folderOf(path).append(target);
    }
    return errorOf(ELOOP);
}

}  // namespace

PreferencesFile::PreferencesFile(std::string path, const FileCalls& calls)
    : m_path(std::move(path)), m_calls(calls) {
    m_pathError = followLinks(m_path);
    m_folder = folderOf(m_path);
}

PreferencesFile::~PreferencesFile() {
    if (m_lockDescriptor < 0) return;
    // Closing alone would leave the lock with a child that was forked meanwhile, as long as it
    // runs.
    (void)::flock(m_lockDescriptor, LOCK_UN);
    ::close(m_lockDescriptor);
}

std::error_code PreferencesFile::read(std::string& text) const {
    if (m_pathError) return m_pathError;
    const Descriptor file(::open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) return lastError();
    if (!S_ISREG(status.st_mode)) return errorOf(EINVAL);

    text.clear();
    std::array<char, 16384> buffer;
    for (;;) {
        const ssize_t count = m_calls.read(file.number(), buffer.data(), buffer.size());
        if (count == 0) return {};
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        if (text.size() + static_cast<std::size_t>(count) > kMaximumSize) return errorOf(EFBIG);
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void PreferencesFile::makeFolders() const {
    struct stat status {};
    if (m_folder.empty() || ::stat(m_folder.c_str(), &status) == 0) return;
    for (std::size_t slash = m_folder.find('/', 1); slash != std::string::npos;
         slash = m_folder.find('/', slash + 1)) {
        (void)::mkdir(m_folder.substr(0, slash).c_str(), 0700);  // whoever opens a file will tell
    }
}

std::error_code PreferencesFile::lock() {
    if (m_pathError || m_isLocked) return m_pathError;
    makeFolders();
    const std::string name = m_folder + '.' + m_path.substr(m_folder.size()) + ".lock";
    m_lockDescriptor = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_lockDescriptor < 0) return lastError();
    for (int attempt = 0; attempt < kLockAttempts; ++attempt) {
        const bool isRefused = ::flock(m_lockDescriptor, LOCK_EX | LOCK_NB) != 0;
        m_isLocked = !isRefused || (errno != EWOULDBLOCK && errno != EINTR);
        if (m_isLocked) return {};
        (void)::nanosleep(&kLockPause, nullptr);
    }
    return errorOf(ETIMEDOUT);
}

std::error_code PreferencesFile::writeThrough(int descriptor, std::string_view text) const {
    while (!text.empty()) {
        const ssize_t count = m_calls.write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return errorOf(count < 0 ? errno : EIO);
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    while (m_calls.fsync(descriptor) != 0) {
        if (errno != EINTR) return lastError();
    }
    return {};
}

std::error_code PreferencesFile::replace(std::string_view text) const {
    std::string name = m_path + ".XXXXXX";
    Descriptor file(::mkostemp(name.data(), O_CLOEXEC));  // mode 0600
    if (!file.isOpen()) return lastError();

    struct stat old {};
    if (::stat(m_path.c_str(), &old) == 0) {
        // Before the owner is right nobody else may look in.
        const bool isOwnerKept = ::fchown(file.number(), old.st_uid, old.st_gid) == 0;
        (void)::fchmod(file.number(), old.st_mode & (isOwnerKept ? 07777U : 0700U));
    }
    std::error_code error = writeThrough(file.number(), text);
    if (::close(file.release()) != 0 && !error) error = lastError();
    if (!error && m_calls.rename(name.c_str(), m_path.c_str()) != 0) error = lastError();
    if (error) {
        (void)::unlink(name.c_str());
        return error;
    }
    // The new file is in its place; whether the folder can be flushed changes nothing about that.
    const char* folderName = m_folder.empty() ? "." : m_folder.c_str();
    const Descriptor folder(::open(folderName, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen()) (void)m_calls.fsync(folder.number());
    return {};
}

std::error_code PreferencesFile::setAside(std::string& keptAs) const {
    for (int number = 1; number <= kMaximumDamagedFiles; ++number) {
        std::string name = m_path + ".damaged-" + std::to_string(number);
        // Creating the name first reserves it; renaming then replaces only what was created here.
        const Descriptor reserved(
            ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!reserved.isOpen() && errno == EEXIST) continue;
        if (!reserved.isOpen()) return lastError();
        if (m_calls.rename(m_path.c_str(), name.c_str()) != 0) {
            const std::error_code error = lastError();
            (void)::unlink(name.c_str());
            return error;
        }
        keptAs = std::move(name);
        return {};
    }
    return errorOf(EEXIST);
}

}  // namespace veltra
