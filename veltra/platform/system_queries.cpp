// SPDX-License-Identifier: MIT
#include "veltra/platform/system_queries.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace veltra {

SystemQueries::~SystemQueries() = default;

template <>
struct OwnImplementation<const SystemQueries> : OwnFrom<platformSystemQueries> {};
template class Installable<const SystemQueries>;

std::optional<std::uint64_t> SystemQueries::number(SystemKey key) const noexcept {
    std::array<std::byte, sizeof(std::uint64_t)> answer{};
    const std::optional<std::size_t> length = bytes(key, answer);
    if (length == sizeof(std::uint64_t)) {
        std::uint64_t wide = 0;
        std::memcpy(&wide, answer.data(), sizeof wide);
        return wide;
    }
    if (length == sizeof(std::uint32_t)) {
        std::uint32_t narrow = 0;
        std::memcpy(&narrow, answer.data(), sizeof narrow);
        return narrow;
    }
    return {};
}

std::string SystemQueries::text(SystemKey key) const {
    std::array<char, 256> answer{};  // zeros: a NUL follows what is cut
    const std::span<char> room = std::span(answer).first(answer.size() - 1);
    if (!bytes(key, std::as_writable_bytes(room))) return {};
    return answer.data();
}

}  // namespace veltra
