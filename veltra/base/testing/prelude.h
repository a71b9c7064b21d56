// SPDX-License-Identifier: MIT
// What nearly every test needs: GoogleTest and the everyday headers of the standard library.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace veltra::testing {

// What `body` writes to the standard output.
template <typename Body>
std::string printed(Body body) {
    ::testing::internal::CaptureStdout();
    body();
    return ::testing::internal::GetCapturedStdout();
}

// Runs `work` on so many threads at once, each with its number, until all have returned.
template <typename Work>
void onThreads(int count, const Work& work) {
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number)
        threads.emplace_back(std::cref(work), number);
}

}  // namespace veltra::testing
