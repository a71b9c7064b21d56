// SPDX-License-Identifier: MIT
// A system whose files, limit and events are the test's. In force while it lives.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/memory_system.h"

#include <cstring>
#include <map>
#include <string>

namespace veltra::testing {

class FakeMemorySystem final : public InForce<MemorySystem> {
public:
    std::ptrdiff_t read(const char* path, std::size_t offset,
                        std::span<char> text) const noexcept override {
        const auto file = files.find(path);
        if (file == files.end()) return -1;
        const std::size_t start = std::min(offset, file->second.size());
        const std::size_t size = std::min(text.size(), file->second.size() - start);
        std::memcpy(text.data(), file->second.data() + start, size);
        return static_cast<std::ptrdiff_t>(size);
    }
    Limits addressSpaceLimits() const noexcept override { return limits; }
    bool setAddressSpaceLimit(std::uint64_t bytes) noexcept override {
        if (bytes > limits.most || isRefusing) return false;
        limits.current = bytes;
        return true;
    }
    Events openEvents(const char* path, Nanoseconds) noexcept override {
        watched = path;
        return {7, 8, 9};
    }
    void takeEvents(const Events&) noexcept override { ++taken; }
    void closeEvents(const Events&) noexcept override { watched.clear(); }

    std::map<std::string, std::string> files;
    Limits limits;
    bool isRefusing = false;
    std::string watched;
    int taken = 0;
};

}  // namespace veltra::testing
