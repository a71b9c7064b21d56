// SPDX-License-Identifier: MIT
// The real file system, of which one step fails, some ways are not known, or somebody else comes in
// between. In force while it lives.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/port.h"

#include <functional>
#include <string_view>

namespace veltra::testing {

class FailingFileSystem final : public InForce<FileSystem> {
public:
    using Error = std::error_code;

    int steps = 0;     // so far
    int failing = -1;  // the step that fails, once, with `error`
    Error error;
    bool isOld = false;        // knows neither how to exchange, nor to refuse, nor to copy
    std::size_t most = 65536;  // bytes that one call writes
    int writes = 0;            // steps so far that change something
    std::function<void(std::string_view step, std::string_view name)> beforeStep;

    Error facts(Handle folder, const char* name, LastLink lastLink,
                FileFacts& facts) noexcept override {
        return failed("facts", name) ? error : m_real.facts(folder, name, lastLink, facts);
    }
    Error readLink(Handle folder, const char* name, std::string& target) noexcept override {
        return failed("readLink", name) ? error : m_real.readLink(folder, name, target);
    }
    Error resolve(const char* path, std::string& resolved) noexcept override {
        return failed("resolve", path) ? error : m_real.resolve(path, resolved);
    }
    Error open(Handle folder, const char* name, Access access, LastLink lastLink,
               Handle& opened) noexcept override {
        return failed("open", name) ? error : m_real.open(folder, name, access, lastLink, opened);
    }
    Error close(Handle handle) noexcept override {
        const Error real = m_real.close(handle);
        return failed("close", "") ? error : real;
    }
    Error createFile(Handle folder, const char* name, std::uint32_t permissions,
                     Handle& opened) noexcept override {
        return changed("createFile", name) ? error
                                           : m_real.createFile(folder, name, permissions, opened);
    }
    Error makeFolder(Handle folder, const char* name, std::uint32_t permissions) noexcept override {
        return changed("makeFolder", name) ? error : m_real.makeFolder(folder, name, permissions);
    }
    Error makeLink(Handle folder, const char* name, const char* target) noexcept override {
        return changed("makeLink", name) ? error : m_real.makeLink(folder, name, target);
    }
    Error list(Handle folder, std::vector<std::string>& names) noexcept override {
        return failed("list", "") ? error : m_real.list(folder, names);
    }
    Error read(Handle file, std::span<std::byte> bytes, std::size_t& count) noexcept override {
        return failed("read", "") ? error : m_real.read(file, bytes, count);
    }
    Error write(Handle file, std::span<const std::byte> bytes,
                std::size_t& count) noexcept override {
        return changed("write", "")
                   ? error
                   : m_real.write(file, bytes.first(std::min(most, bytes.size())), count);
    }
    Error copyPart(Handle from, Handle to, std::size_t& count) noexcept override {
        if (isOld) return std::make_error_code(std::errc::not_supported);
        return changed("copyPart", "") ? error : m_real.copyPart(from, to, count);
    }
    Error flush(Handle) noexcept override {
        return failed("flush", "") ? error : Error();  // no test takes the power away
    }
    Error setPermissions(Handle handle, std::uint32_t permissions) noexcept override {
        return changed("setPermissions", "") ? error : m_real.setPermissions(handle, permissions);
    }
    Error setTimes(Handle folder, const char* name, FileTime accessed,
                   FileTime modified) noexcept override {
        return changed("setTimes", name) ? error
                                         : m_real.setTimes(folder, name, accessed, modified);
    }
    Error rename(Handle folder, const char* name, const char* newName,
                 Collision collision) noexcept override {
        if (isOld && collision != Collision::Replace)
            return std::make_error_code(std::errc::not_supported);
        return changed("rename", newName) ? error : m_real.rename(folder, name, newName, collision);
    }
    Error addName(Handle folder, const char* name, const char* newName) noexcept override {
        return changed("addName", newName) ? error : m_real.addName(folder, name, newName);
    }
    Error remove(Handle folder, const char* name, FileKind kind) noexcept override {
        return changed("remove", name) ? error : m_real.remove(folder, name, kind);
    }
    std::string homeFolder(const std::string& user) noexcept override {
        return m_real.homeFolder(user);
    }

private:
    bool failed(std::string_view step, std::string_view name) {
        if (beforeStep) beforeStep(step, name);
        return steps++ == failing;
    }
    bool changed(std::string_view step, std::string_view name) {
        ++writes;
        return failed(step, name);
    }

    FileSystem& m_real = platformFileSystem();
};

}  // namespace veltra::testing
