// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/detail/kernel_release.h"

#include "veltra/platform/system_queries.h"

#include <array>
#include <atomic>
#include <charconv>
#include <span>

namespace veltra::detail {

namespace {

constexpr std::int32_t kUnknown = -1;

// Relaxed: two threads that ask first both read the same number.
constinit std::atomic<std::int32_t> majorRelease{kUnknown};

std::int32_t read() noexcept {
    std::array<char, 64> text{};
    SystemQueries::current().bytes(SystemKey::KernelRelease,
                                   std::as_writable_bytes(std::span(text)));
    if (text[0] < '0' || text[0] > '9') return 0;
    std::int32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? number : INT32_MAX;
}

}  // namespace

std::int32_t kernelMajorRelease() noexcept {
    std::int32_t number = majorRelease.load(std::memory_order_relaxed);
    if (number == kUnknown) {
        number = read();
        majorRelease.store(number, std::memory_order_relaxed);
    }
    return number;
}

void forgetKernelMajorRelease() noexcept {
    majorRelease.store(kUnknown, std::memory_order_relaxed);
}

}  // namespace veltra::detail
