// SPDX-License-Identifier: MIT
#include "veltra/platform/processor_features.h"

#include "veltra/platform/port.h"

#include <atomic>

namespace veltra {

namespace {

// Relaxed: a query is code, and publishes no data that came before it.
constinit std::atomic<ProcessorFeatures::Query> s_installedQuery{nullptr};

// Asked when the library is loaded. A constructor of another library that runs even earlier asks
// for itself.
constinit ProcessorFeatures s_platform{};
constinit std::atomic<bool> s_isKnown{false};

[[gnu::constructor(101)]] void askAtLoad() noexcept {
    s_platform = platformProcessorFeatures();
    s_isKnown.store(true, std::memory_order_release);  // with current()
}

}  // namespace

ProcessorFeatures ProcessorFeatures::current() noexcept {
    const Query installed = s_installedQuery.load(std::memory_order_relaxed);
    if (installed != nullptr) return installed();
    const bool isKnown = s_isKnown.load(std::memory_order_acquire);  // with askAtLoad()
    return isKnown ? s_platform : platformProcessorFeatures();
}

ProcessorFeatures::Query ProcessorFeatures::install(Query query) noexcept {
    return s_installedQuery.exchange(query, std::memory_order_relaxed);
}

}  // namespace veltra
