// SPDX-License-Identifier: MIT
// The proof that the engine's block callback allocates nothing, frees nothing, locks nothing and
// asks the system for nothing: its thread runs under a filter that traps every system call, in a
// program whose allocator and mutex count, while another thread keeps asking for everything that
// can be asked for.
#include "engine.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

#include <chrono>
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

thread_local Counts* counts = nullptr;  // null: nobody counts on this thread
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

// From here on every system call of this thread raises SIGSYS, but for the way out and the way
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

// The audio thread renders a few blocks, then the other one has its turn. Both spin: waiting would
// be a system call.
class Turns {
public:
    void give() noexcept { m_turn.fetch_add(1); }
    void waitFor(int turn) const noexcept {
        while (m_turn.load() < turn) {
        }
    }

private:
    std::atomic<int> m_turn{0};
};

constexpr int kTurns = kBlocks / 25;

// Everything that a main thread does, again and again.
void askForEverything(Engine& engine, const std::array<std::string, 4>& paths, Turns& turns) {
    std::vector<StripId> ids;
    const std::atomic<bool> never{false};
    const auto sound = KeySound::read(*mustOpen(paths[0]), never);
    for (int turn = 0; turn < kTurns; ++turn) {
        turns.waitFor(2 * turn + 1);
        const auto number = static_cast<std::size_t>(turn);
        const bool isOdd = turn % 2 != 0;
        if (turn % 10 == 0) ids.push_back(engine.add(mustOpen(paths[number / 10 % 4])));
        if (turn % 15 == 14) {
            engine.remove(ids.front());
            ids.erase(ids.begin());
        }
        const StripId id = ids[number % ids.size()];
        engine.setGain(id, static_cast<float>(turn % 7) / 5.0F);
        engine.setPan(id, static_cast<float>(turn % 5) / 2.0F - 1.0F);
        if (turn % 3 == 0) engine.setMuted(id, isOdd);
        if (turn % 11 == 0) engine.setSoloed(id, isOdd);
        engine.setOutputGain(isOdd ? 0.5F : 1.0F);
        engine.setOutputBalance(isOdd ? 0.25F : 0.0F);
        engine.setDimmed(turn % 4 == 0);
        engine.setMono(turn % 6 == 0);
        engine.setMeasuresTruePeaks(turn % 8 < 4);
        engine.setTempo(100.0 + turn % 60);
        engine.setMeter(3 + turn % 4, 8);
        if (turn % 30 == 0) engine.locate(100 * turn);
        if (turn % 70 == 0) engine.setLoop(turn % 140 == 0, 0, 9'000);
        engine.setPlaying(turn % 90 < 80);
        Instrument& keys = engine.instrument();
        keys.press(keys.frames() + number % 100, 30 + turn % 70, 1 + turn % 127);
        keys.release(keys.frames() + 90, 30 + (turn + 60) % 70);
        keys.setSustained(0, turn % 25 < 10);
        if (turn % 12 == 0) keys.setSound(turn % 24 == 0 ? sound : nullptr);
        if (turn % 40 == 0) keys.releaseAll(0);
        if (turn % 100 == 99) keys.silence();
        for (int i = 0; i < 300 && turn % 50 == 0; ++i)  // more than there is room for
            keys.press(0, i % 128, 64);
        keys.collect();
        engine.meters();
        engine.takeOutputLevels();
        engine.collect();
        std::this_thread::sleep_for(std::chrono::microseconds(200));  // for those who read
        turns.give();
    }
}

// Does each forbidden thing once, to see that it is counted, then all blocks.
int faultsOfBlocks(Engine& engine, Turns& turns) {
    std::vector<float> samples(std::size_t{2} * kBlockFrames);
    const std::array<float*, 2> outputs{samples.data(), samples.data() + kBlockFrames};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    void* volatile block = nullptr;  // or the compiler leaves the pair below out
    Counts ofControl, ofBlocks;
    int soundingBlocks = 0;
    if (!trapSystemCalls()) return 0xFF;
    counts = &ofControl;
    block = ::operator new(1);
    ::operator delete(block);
    pthread_mutex_lock(&mutex);
    static_cast<void>(::getppid());
    counts = &ofBlocks;
    for (int turn = 0; turn < kTurns; ++turn) {
        for (int i = 0; i < kBlocks / kTurns; ++i) {
            engine.processBlock(outputs.data(), 2, kBlockFrames);
            soundingBlocks += samples[0] != 0.0F ? 1 : 0;
        }
        turns.give();
        turns.waitFor(2 * turn + 2);
    }
    counts = nullptr;
    const int found = faults(ofControl, {1, 1, 1, 1}) << 4 | faults(ofBlocks, {});
    return found == 0 && soundingBlocks < kBlocks / 10 ? 0xFE : found;
}

TEST(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    SKIP_WITHOUT_RECORDINGS();
    const std::array<std::string, 4> paths{
        recording("loop_tabla", "-b 16", "a.wav"), recording("loop_tabla", "-b 24", "b.aiff"),
        recording("loop_tabla", "-e float -b 32 -r 48000", "c.wav", "remix 1"),
        recording("loop_tabla", "-b 16", "d.wav", "remix 1 2 1 2 1 2")};
    const auto run = [&] {
        Engine engine(Engine::Feeding::ByThread, 44100, Engine::AtEnd::Stays);
        Turns turns;
        std::thread main([&] { askForEverything(engine, paths, turns); });
        ::_exit(faultsOfBlocks(engine, turns));
    };
    EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace veltra::console

#else

TEST(RealtimeTest, TenThousandBlocksTouchNeitherMemoryNorLocksNorTheSystem) {
    GTEST_SKIP() << "sanitizers allocate, lock and call the system by themselves";
}

#endif
