// SPDX-License-Identifier: MIT
// What is logged when something went wrong that nobody expected: what it was, in which application
// on which system, where, in which state of the process, and what was logged before.
#pragma once

#include "veltra/diagnostics/log_ring.h"
#include "veltra/diagnostics/text_buffer.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace veltra::detail {

// Needs some 40 KiB of stack, and no heap: without memory its parts are shorter.
class FailureReport {
public:
    // Looks at the log as it is now.
    FailureReport() noexcept;

    // "APPLICATION has encountered an unexpected error."
    std::string_view title() const noexcept { return m_title.view(); }

    // `text` says what happened; `stack` has an address in each call, and may be empty.
    void log(std::string_view text, std::span<const std::uintptr_t> stack) const noexcept;

private:
    LocalTextBuffer<256> m_application;
    LocalTextBuffer<256> m_title;
    static constexpr std::string_view kRecentTitle = "Logged before:\n";
    LocalTextBuffer<kRecentTitle.size() + LogRing::kLines*(LogRing::kLongestLine + 2)>
        m_recentLines;  // after the title
};

}  // namespace veltra::detail
