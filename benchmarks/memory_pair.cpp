// SPDX-License-Identifier: MIT
// A program that makes pairs of malloc and free of 64 bytes and prints the nanoseconds of one, the
// median of many runs. Built with and without the library: what linking it costs a program.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

int main() {
    constexpr int kPairs = 200'000;
    std::array<double, 41> nanoseconds{};
    for (double& run : nanoseconds) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kPairs; ++i) {
            void* block = std::malloc(64);
            asm volatile("" : "+r"(block) : : "memory");
            std::free(block);
        }
        const auto end = std::chrono::steady_clock::now();
        run = std::chrono::duration<double, std::nano>(end - start).count() / kPairs;
    }
    auto* const middle = nanoseconds.begin() + nanoseconds.size() / 2;
    std::nth_element(nanoseconds.begin(), middle, nanoseconds.end());
    std::printf("%g\n", *middle);
    return 0;
}
