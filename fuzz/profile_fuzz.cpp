// SPDX-License-Identifier: MIT
// Any bytes as a colour profile, which is none or transforms each colour alike every time.
#include "fuzz/require.h"
#include "veltra/platform/color_transform.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace veltra;
    const auto transform = makeColorTransform(std::as_bytes(std::span(data, size)));
    if (transform == nullptr) return 0;
    const std::size_t count = transform->componentCount();
    require(count == 1 || count == 3, "is grey or has three colours");
    const float components[][3] = {{0, 0, 0}, {1, 1, 1}, {0.5F, 0.25F, 0.75F}, {-1, 2, 1e30F}};
    for (const auto& color : components) {
        float first[3], second[3];
        transform->toSrgb(color, first);
        transform->toSrgb(color, second);
        require(std::memcmp(first, second, sizeof first) == 0, "transforms alike");
    }
    return 0;
}
