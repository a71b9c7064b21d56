// The leak guard on the process's own zone.
#include "tests/memory/real_zone.h"
#include "veltra/memory/leak_guard.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/testing/child_process.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

struct GuardOn : Preferences {
    PropertyValue value(std::string_view key) const noexcept override {
        return key == "LeakGuardEnabled" ? PropertyValue(true) : PropertyValue();
    }
    bool setValue(std::string_view, const PropertyValue&) noexcept override { return false; }
    std::error_code synchronise() noexcept override { return {}; }
    std::error_code reload() noexcept override { return {}; }
};

template <typename Body>
bool holdsGuarded(Body body) {
    return testing::holdsInChild([&] {
        GuardOn preferences;
        Preferences::install(&preferences);
        body();
        Preferences::install(nullptr);
        return !::testing::Test::HasFailure();
    });
}

void* volatile sink = nullptr;

TEST(LeakGuardOnTheProcess, SeesEveryWayToAllocate) {
    SKIP_WITHOUT_REAL_ZONE();
    EXPECT_TRUE(holdsGuarded([] {
        void* const before = std::malloc(10);
        void* blocks[7] = {};
        {
            const QKLeakGuard guard;
            blocks[0] = std::malloc(1);
            blocks[1] = std::calloc(2, 5);
            blocks[2] = std::realloc(before, 100);
            blocks[3] = ::operator new(1000);
            blocks[4] = std::aligned_alloc(4096, 8192);
            blocks[5] = ::strdup("four");
            blocks[6] = std::realloc(std::malloc(7), 20000);
            sink = std::malloc(5);
            std::free(sink);
        }
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks[4]) % 4096, 0U);
        EXPECT_EQ(QKLeakGuard::ResetHistory(false), 1 + 10 + 100 + 1000 + 8192 + 5 + 20000);
        for (void* const block : blocks)
            std::free(block);
    }));
}

TEST(LeakGuardOnTheProcess, ReportsBehindTheHostsOwnOutput) {
    SKIP_WITHOUT_REAL_ZONE();
    EXPECT_TRUE(holdsGuarded([] {
        const QKLeakGuard guard;
        ::testing::internal::CaptureStdout();
        std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
        std::printf("host\n");
        QKLeakGuard::ResetHistory(false);
        EXPECT_EQ(QKResetLeakGuardHistory(true), 0);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  "host\nLLD: no leaking bytes detected\n");
    }));
}

// No block is lost, none is spoilt, and no child hangs.
TEST(LeakGuardOnTheProcess, StaysWholeAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    EXPECT_TRUE(holdsGuarded([] {
        std::atomic<bool> stop{false};
        std::atomic<int> spoilt{0};
        const auto turns = [&](std::minstd_rand& random, std::vector<unsigned char*>& blocks) {
            for (int i = 0; i < 20; ++i) {
                unsigned char*& one = blocks[random() % blocks.size()];
                std::size_t size = 0;
                if (one != nullptr) std::memcpy(&size, one, sizeof size);
                if (one != nullptr && one[size - 1] != (size & 255)) ++spoilt;
                size = sizeof size + 1 + random() % (random() % 50 == 0 ? 300000 : 2000);
                void* taken = one;
                switch (random() % 4) {
                    case 0:
                        taken = std::realloc(taken, size);
                        break;
                    case 1:
                        std::free(taken), taken = std::malloc(size);
                        break;
                    case 2:
                        std::free(taken), taken = std::calloc(size, 1);
                        break;
                    default:
                        std::free(taken);
                        if (::posix_memalign(&taken, std::size_t{16} << random() % 8, size) != 0)
                            std::abort();
                }
                one = static_cast<unsigned char*>(taken);
                std::memcpy(one, &size, sizeof size);
                one[size - 1] = static_cast<unsigned char>(size & 255);
            }
        };
        std::vector<std::jthread> threads;
        for (unsigned seed = 1; seed <= 8; ++seed)
            threads.emplace_back([&, seed] {
                std::minstd_rand random(seed);
                std::vector<unsigned char*> blocks(64, nullptr);
                while (!stop) {
                    turns(random, blocks);
                    const QKLeakGuard guard;
                    turns(random, blocks);
                }
                for (unsigned char* block : blocks)
                    std::free(block);
            });
        for (int i = 0; i < 40; ++i)
            EXPECT_TRUE(testing::holdsInChild([] {
                QKLeakGuard::ResetHistory(false);
                const QKLeakGuard guard;
                const auto numbers = std::make_unique<std::vector<int>>(1000, 7);
                sink = numbers->data();
                return QKLeakGuard::ResetHistory(false) >= 4000;
            }));
        stop = true;
        threads.clear();
        EXPECT_EQ(spoilt, 0);
        EXPECT_EQ(QKLeakGuard::ResetHistory(false), 0);
    }));
}

}  // namespace
}  // namespace veltra
