// SPDX-License-Identifier: MIT
// A system whose answers are the test's; nothing to all other questions. In force while it lives.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/system_queries.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>
#include <vector>

namespace veltra::testing {

class FakeSystemQueries final : public InForce<SystemQueries> {
public:
    std::optional<std::size_t> bytes(SystemKey key,
                                     std::span<std::byte> answer) const noexcept override {
        ++asked;
        const auto found = answers.find(key);
        if (found == answers.end()) return {};
        std::copy_n(found->second.begin(), std::min(answer.size(), found->second.size()),
                    answer.begin());
        return found->second.size();
    }

    template <typename Value>
    void set(SystemKey key, Value value) {
        setText(key, {reinterpret_cast<const char*>(&value), sizeof value});
    }
    void setText(SystemKey key, std::string_view text) {
        const auto bytesOfText = std::as_bytes(std::span(text));
        answers[key].assign(bytesOfText.begin(), bytesOfText.end());
    }

    std::map<SystemKey, std::vector<std::byte>> answers;
    mutable int asked = 0;
};

}  // namespace veltra::testing
