#include "ring.h"

#include <thread>

#include <gtest/gtest.h>

namespace veltra::console {
namespace {

TEST(Ring, EveryFrameArrivesOnceAndInOrderWhileBothSidesRun) {
    constexpr std::size_t kFrames = 200'000;  // exact as floats
    Ring ring(2, 1000);
    EXPECT_EQ(ring.capacity(), 1024U);
    std::thread writer([&ring] {
        std::size_t next = 0;
        while (next < kFrames) {
            const std::size_t count = std::min({ring.writable(), kFrames - next, next % 97 + 1});
            for (std::size_t i = 0; i < count; ++i) {
                ring.writePlace(0)[i] = static_cast<float>(next + i);
                ring.writePlace(1)[i] = -static_cast<float>(next + i);
            }
            ring.publish(count);
            next += count;
            if (count == 0) std::this_thread::yield();
        }
    });
    std::size_t expected = 0;
    std::size_t wrong = 0;
    while (expected < kFrames) {
        const std::size_t count = std::min(ring.readableInOnePiece(), expected % 61 + 1);
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<float>(expected + i);
            if (ring.readPlace(0)[i] != value || ring.readPlace(1)[i] != -value) ++wrong;
        }
        ring.consume(count);
        expected += count;
        if (count == 0) std::this_thread::yield();
    }
    writer.join();
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(ring.readable(), 0U);
    EXPECT_EQ(ring.writable() + kFrames % 1024, 1024U);  // up to the wrap
}

}  // namespace
}  // namespace veltra::console
