// SPDX-License-Identifier: MIT
#include "veltra/ui/image.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(DrawnImages, HaveWholePixelsAndAreRefusedBeyondAnySense) {
    const ScriptedPort port;
    const auto draw = [](Canvas&) {};
    EXPECT_EQ(Image::drawn({10.2F, 5}, 1.5F, draw)->size(), (Size{16 / 1.5F, 8 / 1.5F}));
    for (const Size size : {Size{1, 1}, Size{32767, 32767}})
        EXPECT_NE(Image::drawn(size, 1.0F, draw), nullptr);
    for (const Size size : {Size{0, 5}, Size{5, -1}, Size{32768, 1}, Size{1, 32768}})
        EXPECT_EQ(Image::drawn(size, 1.0F, draw), nullptr);
    EXPECT_EQ(Image::load("x.png", 0.0F), nullptr);
}

}  // namespace
}  // namespace veltra::testing
