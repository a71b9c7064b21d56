// SPDX-License-Identifier: MIT
#include "veltra/platform/processor_features.h"

#include "veltra/platform/port.h"

#include <atomic>

namespace veltra {

namespace {

// Relaxed throughout: a query is code, and publishes no data that came before it.
constinit std::atomic<ProcessorFeatures::Query> s_installedQuery{nullptr};

}  // namespace

ProcessorFeatures ProcessorFeatures::current() noexcept {
    static const ProcessorFeatures platform = platformProcessorFeatures();
    const Query installed = s_installedQuery.load(std::memory_order_relaxed);
    return installed != nullptr ? installed() : platform;
}

ProcessorFeatures::Query ProcessorFeatures::install(Query query) noexcept {
    return s_installedQuery.exchange(query, std::memory_order_relaxed);
}

}  // namespace veltra
