// SPDX-License-Identifier: MIT
#include "veltra/platform/process.h"

#include "veltra/base/immortal.h"
#include "veltra/base/replaceable.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include <pthread.h>
#include <sys/auxv.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace veltra {

namespace {

// Counts the forks between the first process and this one, from 1: what was read under another
// count belongs to an ancestor. 0 when the system takes no handlers, and then nothing is kept.
// Written only in a forked child, while it has one thread.
std::atomic<std::uint32_t> forkGeneration{0};

std::uint32_t currentGeneration() noexcept {
    static const bool isCounting = [] {
        forkGeneration.store(1, std::memory_order_relaxed);
        if (::pthread_atfork(nullptr, nullptr,
                             [] { forkGeneration.fetch_add(1, std::memory_order_relaxed); }) == 0)
            return true;
        forkGeneration.store(0, std::memory_order_relaxed);
        return false;
    }();
    // Relaxed: it only changes where there is one thread.
    return isCounting ? forkGeneration.load(std::memory_order_relaxed) : 0;
}

struct KnownThread {
    std::uint32_t generation = 0;
    std::uint32_t number = 0;
};

// Initial-exec: reading it never allocates, also when the library was loaded late.
[[gnu::tls_model("initial-exec")]] thread_local KnownThread knownThread;

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
        const std::uint32_t generation = currentGeneration();
        if (generation != 0 &&
            knownProcessGeneration.load(std::memory_order_acquire) == generation)  // with below
            return knownProcess.load(std::memory_order_relaxed);
        const std::int32_t number = ::getpid();
        knownProcess.store(number, std::memory_order_relaxed);
        knownProcessGeneration.store(generation, std::memory_order_release);  // with above
        return number;
    }

    std::uint32_t threadId() const noexcept override {
        const std::uint32_t generation = currentGeneration();
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

const Process& platformProcess() noexcept {
    static const Immortal<LinuxProcess> process;
    return *process;
}

constinit Replaceable<const Process, &platformProcess> replaceableProcess;

}  // namespace

Process::~Process() = default;

const Process& Process::current() noexcept {
    return replaceableProcess.current();
}

const Process* Process::install(const Process* process) noexcept {
    return replaceableProcess.install(process);
}

const char* environmentVariable(const char* name) noexcept {
    return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): the contract says so
}

}  // namespace veltra
