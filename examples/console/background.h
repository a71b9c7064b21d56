// SPDX-License-Identifier: MIT
// Work that may take for ever: sound systems hang now and then.
#pragma once

#include <chrono>
#include <future>
#include <thread>
#include <type_traits>
#include <utility>

namespace veltra::console {

// On a thread of its own, which stays behind when the work takes too long.
template <typename Work>
std::future<std::invoke_result_t<Work>> inBackground(Work work) {
    std::packaged_task<std::invoke_result_t<Work>()> task(std::move(work));
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    return result;
}

// Whether there is a result to be had without waiting.
template <typename Result>
bool isReady(const std::future<Result>& result) {
    return result.valid() && result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

}  // namespace veltra::console
