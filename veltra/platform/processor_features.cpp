// SPDX-License-Identifier: MIT
#include "veltra/platform/processor_features.h"

#include "veltra/platform/port.h"

#include <atomic>

namespace veltra {

namespace {

// Relaxed: a query is code, and publishes no data that came before it.
constinit std::atomic<ProcessorFeatures::Query> installedQuery{nullptr};

// Asked when the library is loaded. A constructor of another library that runs even earlier asks
// for itself.
constinit ProcessorFeatures featuresAtLoad{};
constinit std::atomic<bool> areKnown{false};

[[gnu::constructor(101)]] void askAtLoad() noexcept {
    featuresAtLoad = platformProcessorFeatures();
    areKnown.store(true, std::memory_order_release);  // with current()
}

}  // namespace

ProcessorFeatures ProcessorFeatures::current() noexcept {
    const Query installed = installedQuery.load(std::memory_order_relaxed);
    if (installed != nullptr) return installed();
    const bool isLoaded = areKnown.load(std::memory_order_acquire);  // with askAtLoad()
    return isLoaded ? featuresAtLoad : platformProcessorFeatures();
}

ProcessorFeatures::Query ProcessorFeatures::install(Query query) noexcept {
    return installedQuery.exchange(query, std::memory_order_relaxed);
}

}  // namespace veltra
