// SPDX-License-Identifier: MIT
// The proof that the engine's block callback allocates nothing, locks nothing and asks the system
// for nothing: it runs in a child process under a filter that traps every system call, in a program
// whose allocator and mutex count.
#include "engine.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

#include <csignal>

#ifndef VELTRA_SANITIZED
#include <dlfcn.h>
#include <pthread.h>
#include <seccomp.h>
#include <unistd.h>

namespace {

// How often, of what runs while somebody counts.
struct Counts {
    int allocations = 0, frees = 0, locks = 0, systemCalls = 0;
};

Counts* counts = nullptr;  // null: nobody counts
int (*lockMutex)(pthread_mutex_t*) = nullptr;

void count(int Counts::*what) noexcept {
    if (counts != nullptr) ++(counts->*what);
}

}  // namespace

// The C library's own names, visible to all libraries of the process: operator new and delete come
// here too.
#pragma GCC visibility push(default)
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
    count(&Counts::allocations);
    return __libc_malloc(size);
}
void* calloc(std::size_t number, std::size_t size) {
    count(&Counts::allocations);
    return __libc_calloc(number, size);
}
void* realloc(void* block, std::size_t size) {
    count(&Counts::allocations);
    return __libc_realloc(block, size);
}
void free(void* block) {
    if (block != nullptr) count(&Counts::frees);
    __libc_free(block);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    count(&Counts::locks);
    if (lockMutex == nullptr) {
        lockMutex =
            reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    }
    return lockMutex(mutex);
}
}
#pragma GCC visibility pop

namespace veltra::console {
namespace {

using namespace testing;

constexpr std::uint32_t kBlockFrames = 32;
constexpr int kBlocks = 10'000;

// From here on every system call of this process raises SIGSYS, but for the way out and the way
// back from the signal.
bool trapSystemCalls() {
    struct sigaction reaction {};
    reaction.sa_handler = [](int) { count(&Counts::systemCalls); };
    scmp_filter_ctx filter = seccomp_init(SCMP_ACT_TRAP);
    return sigaction(SIGSYS, &reaction, nullptr) == 0 && filter != nullptr &&
           seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(exit_group), 0) == 0 &&
           seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(rt_sigreturn), 0) == 0 &&
           seccomp_load(filter) == 0;
}

// What is wrong with the counts, a bit each: a child that lets no system call pass can say no more.
int faults(const Counts& found, const Counts& expected) {
    return int{found.allocations != expected.allocations} |
           int{found.frees != expected.frees} << 1 | int{found.locks != expected.locks} << 2 |
           int{found.systemCalls != expected.systemCalls} << 3;
}

// Does each forbidden thing once, to see that it is counted, then `blocks` blocks.
int faultsOfBlocks(Engine& engine, int blocks, int frees) {
    std::vector<float> samples(std::size_t{2} * kBlockFrames);
    const std::array<float*, 2> outputs{samples.data(), samples.data() + kBlockFrames};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    void* volatile block = nullptr;  // or the compiler leaves the pair below out
    Counts ofControl, ofBlocks;
    if (!trapSystemCalls()) return 0xFF;
    counts = &ofControl;
    block = ::operator new(1);
    ::operator delete(block);
    pthread_mutex_lock(&mutex);
    static_cast<void>(::getppid());
    counts = &ofBlocks;
    for (int i = 0; i < blocks; ++i) {
        engine.setMuted(static_cast<StripId>(i % 4 + 1), i % 3 == 0);
        engine.processBlock(outputs.data(), 2, kBlockFrames);
    }
    counts = nullptr;
    return faults(ofControl, {1, 1, 1, 1}) << 4 | faults(ofBlocks, {0, frees, 0, 0});
}

// Four strips, read far enough ahead for all blocks; `takeOut` of them are removed before. Removing
// frees the entries and their marks and nothing else.
TEST(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    SKIP_WITHOUT_RECORDINGS();
    const std::array<std::string, 4> paths{
        recording("loop_tabla", "-b 16", "a.wav"), recording("loop_tabla", "-b 24", "b.aiff"),
        recording("loop_tabla", "-e float -b 32", "c.wav", "remix 1"),
        recording("loop_tabla", "-b 16", "d.wav", "remix 1 2 1 2 1 2")};
    for (const int takeOut : {0, 2}) {
        const auto run = [&] {
            Engine engine(Engine::Feeding::ByCaller, 44100, std::size_t{kBlockFrames} * kBlocks);
            std::array<StripId, 4> ids{};
            for (std::size_t i = 0; i < ids.size(); ++i)
                ids[i] = engine.add(mustOpen(paths[i]));
            engine.feed(kBlockFrames * kBlocks);
            std::vector<float> samples(kBlockFrames);
            float* const output = samples.data();
            engine.processBlock(&output, 1, kBlockFrames);  // takes the strips into the list
            for (int i = 0; i < takeOut; ++i)
                engine.remove(ids[static_cast<std::size_t>(i)]);
            ::_exit(faultsOfBlocks(engine, takeOut > 0 ? 100 : kBlocks - 1, 2 * takeOut));
        };
        EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "") << takeOut;
    }
}

}  // namespace
}  // namespace veltra::console

#else

TEST(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    GTEST_SKIP() << "sanitizers allocate, lock and call the system by themselves";
}

#endif
