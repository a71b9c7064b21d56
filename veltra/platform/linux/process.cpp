// SPDX-License-Identifier: MIT
#include "veltra/platform/process.h"

#include "veltra/base/immortal.h"
#include "veltra/base/object_file.h"
#include "veltra/platform/fork_generation.h"
#include "veltra/platform/port.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include <sys/auxv.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace veltra {

namespace {

struct KnownThread {
    std::uint32_t generation = 0;
    std::uint32_t number = 0;
};

// Initial-exec: reading it never allocates, also when the library was loaded late.
VELTRA_NEVER_ALLOCATED thread_local KnownThread knownThread;

// The process's number, and the generation that read it: stored last and loaded first, so that a
// number is never older than its generation.
std::atomic<std::int32_t> knownProcess{0};
std::atomic<std::uint32_t> knownProcessGeneration{0};

class LinuxProcess final : public Process {
public:
    std::string_view programName() const noexcept override {
        const char* name = program_invocation_short_name;
        return name != nullptr ? name : "";
    }

    std::int32_t processId() const noexcept override {
        const std::uint32_t generation = forkGeneration();
        if (generation != 0 &&
            knownProcessGeneration.load(std::memory_order_acquire) == generation)  // with below
            return knownProcess.load(std::memory_order_relaxed);
        const std::int32_t number = ::getpid();
        knownProcess.store(number, std::memory_order_relaxed);
        knownProcessGeneration.store(generation, std::memory_order_release);  // with above
        return number;
    }

    std::uint32_t threadId() const noexcept override {
        const std::uint32_t generation = forkGeneration();
        if (generation == 0 || knownThread.generation != generation)
            knownThread = {generation, static_cast<std::uint32_t>(::syscall(SYS_gettid))};
        return knownThread.number;
    }

    std::uint32_t effectiveUserId() const noexcept override { return ::geteuid(); }

    bool isSetUserOrGroupId() const noexcept override {
        static const bool isSecure = ::getauxval(AT_SECURE) != 0;
        return isSecure;
    }
};

}  // namespace

const Process& platformProcess() noexcept {
    static const Immortal<LinuxProcess> process;
    return *process;
}

const char* environmentVariable(const char* name) noexcept {
    return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): the contract says so
}

}  // namespace veltra
