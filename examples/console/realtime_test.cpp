// SPDX-License-Identifier: MIT
// The proof that the engine's block callback allocates nothing, locks nothing and asks the system
// for nothing: it runs in a child process under a filter that traps every system call, in a program
// whose allocator and mutex count.
#include "engine.h"
#include "test_recordings.h"

#include <array>
#include <cerrno>
#include <csignal>

#ifndef VELTRA_SANITIZED
#include <dlfcn.h>
#include <pthread.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Counts {
    int allocations;
    int frees;
    int locks;
    int systemCalls;
    int lastSystemCall;
};

// What the child counts, seen by both processes.
struct Shared {
    Counts control;  // of one deliberate use each
    Counts blocks;
};

Counts* counts = nullptr;  // null: nobody counts
int (*lockMutex)(pthread_mutex_t*) = nullptr;

void count(int Counts::*what) noexcept {
    if (counts != nullptr) ++(counts->*what);
}

void onTrap(int, siginfo_t* info, void*) {
    count(&Counts::systemCalls);
    if (counts != nullptr) counts->lastSystemCall = info->si_syscall;
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
    reaction.sa_sigaction = &onTrap;
    reaction.sa_flags = SA_SIGINFO;
    scmp_filter_ctx filter = seccomp_init(SCMP_ACT_TRAP);
    return sigaction(SIGSYS, &reaction, nullptr) == 0 && filter != nullptr &&
           seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(exit_group), 0) == 0 &&
           seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(rt_sigreturn), 0) == 0 &&
           seccomp_load(filter) == 0;
}

// In the child: does each forbidden thing once, to see that it is counted, then `blocks` blocks.
void runBlocks(Engine& engine, Shared& shared, int blocks) {
    std::vector<float> samples(std::size_t{2} * kBlockFrames);
    const std::array<float*, 2> outputs{samples.data(), samples.data() + kBlockFrames};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    void* volatile block = nullptr;  // or the compiler leaves the pair below out
    if (!trapSystemCalls()) ::_exit(2);
    counts = &shared.control;
    block = ::operator new(1);
    ::operator delete(block);
    pthread_mutex_lock(&mutex);
    static_cast<void>(::getppid());
    counts = &shared.blocks;
    for (int i = 0; i < blocks; ++i) {
        engine.setMuted(static_cast<StripId>(i % 4 + 1), i % 3 == 0);
        engine.processBlock(outputs.data(), 2, kBlockFrames);
    }
    counts = nullptr;
    ::_exit(0);
}

class RealtimeTest : public ::testing::Test {
protected:
    // Four strips, read far enough ahead for all blocks; `takeOut` of them are removed before.
    void run(int takeOut, int blocks) {
        const std::array<std::string, 4> paths{
            recording("loop_tabla", "-b 16", "a.wav"), recording("loop_tabla", "-b 24", "b.aiff"),
            recording("loop_tabla", "-e float -b 32", "c.wav", "remix 1"),
            recording("loop_tabla", "-b 16", "d.wav", "remix 1 2 1 2 1 2")};
        void* memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(memory, MAP_FAILED);
        m_shared = static_cast<Shared*>(memory);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
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
            runBlocks(engine, *m_shared, blocks);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
        ASSERT_EQ(WEXITSTATUS(status), 0) << "no filter for system calls here";

        EXPECT_EQ(m_shared->control.allocations, 1);
        EXPECT_EQ(m_shared->control.frees, 1);
        EXPECT_EQ(m_shared->control.locks, 1);
        EXPECT_EQ(m_shared->control.systemCalls, 1);
        EXPECT_EQ(m_shared->blocks.allocations, 0);
        EXPECT_EQ(m_shared->blocks.locks, 0);
        EXPECT_EQ(m_shared->blocks.systemCalls, 0)
            << "the last was number " << m_shared->blocks.lastSystemCall;
    }

    ~RealtimeTest() override {
        if (m_shared != nullptr) ::munmap(m_shared, sizeof(Shared));
    }

    Shared* m_shared = nullptr;
};

TEST_F(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    SKIP_WITHOUT_RECORDINGS();
    run(0, kBlocks - 1);
    EXPECT_EQ(m_shared->blocks.frees, 0);
}

TEST_F(RealtimeTest, RemovingFreesTheEntriesAndTheirMarksAndNothingElse) {
    SKIP_WITHOUT_RECORDINGS();
    run(2, 100);
    EXPECT_EQ(m_shared->blocks.frees, 2 + 2);
}

}  // namespace
}  // namespace veltra::console

#else

TEST(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    GTEST_SKIP() << "sanitizers allocate, lock and call the system by themselves";
}

#endif
