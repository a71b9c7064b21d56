// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/file_copy.h"

#include "veltra/platform/open_item.h"

namespace veltra::detail {

namespace {

constexpr std::uint32_t kPassedOn = 0777;
constexpr std::uint32_t kOwnerOnly = 0600;
constexpr std::size_t kBufferSize = 65536;

std::error_code writeAll(FileSystem& files, FileSystem::Handle to,
                         std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        std::size_t count = 0;
        const std::error_code error = files.write(to, bytes, count);
        if (error) return error;
        if (count == 0) return std::make_error_code(std::errc::io_error);
        bytes = bytes.subspan(count);
    }
    return {};
}

std::error_code copyContents(FileSystem& files, FileSystem::Handle from, FileSystem::Handle to) {
    std::size_t count = 0;
    std::error_code error;
    do {
        error = files.copyPart(from, to, count);
    } while (!error && count > 0);
    if (error && error != std::errc::not_supported) return error;

    // Also after copyPart() came to the end: some file systems know the end only when they are
    // read.
    std::vector<std::byte> buffer(kBufferSize);
    for (;;) {
        error = files.read(from, buffer, count);
        if (error || count == 0) return error;
        error = writeAll(files, to, std::span(buffer).first(count));
        if (error) return error;
    }
}

}  // namespace

std::error_code copyFile(FileSystem& files, CopySource source, FileSystem::Handle targetFolder,
                         bool isFlushed, TemporaryItem& copy, CopyLoss& loss) {
    using LastLink = FileSystem::LastLink;
    OpenItem from(files);
    OpenItem to(files);
    FileFacts before;
    FileFacts after;
    std::error_code error =
        from.open(source.folder, source.name, FileSystem::Access::Read, LastLink::Keep);
    if (!error) error = files.facts(from.handle(), "", LastLink::Keep, before);
    if (!error && before.kind != FileKind::File)
        error = std::make_error_code(std::errc::device_or_resource_busy);
    if (!error) {
        error = copy.make(FileKind::File, [&](const char* name) {
            return to.create(targetFolder, name, kOwnerOnly);
        });
    }
    if (!error) error = copyContents(files, from.handle(), to.handle());
    if (!error) error = files.facts(from.handle(), "", LastLink::Keep, after);
    if (!error && (before.size != after.size || before.modified != after.modified))
        error = std::make_error_code(std::errc::device_or_resource_busy);
    if (error) return error;

    loss.note(files.setPermissions(to.handle(), before.permissions & kPassedOn));
    loss.note(files.setTimes(to.handle(), "", before.accessed, before.modified));
    if (isFlushed) error = files.flush(to.handle());
    if (error == std::errc::not_supported) error = {};
    const std::error_code closing = to.close();
    return error ? error : closing;
}

std::error_code copyLink(FileSystem& files, CopySource source, FileSystem::Handle targetFolder,
                         const FileFacts& facts, TemporaryItem& copy, CopyLoss& loss) {
    std::string target;
    std::error_code error = files.readLink(source.folder, source.name, target);
    if (error) return error;
    error = copy.make(FileKind::Link, [&](const char* name) {
        return files.makeLink(targetFolder, name, target.c_str());
    });
    if (error) return error;
    loss.note(files.setTimes(targetFolder, copy.name().c_str(), facts.accessed, facts.modified));
    return {};
}

}  // namespace veltra::detail
