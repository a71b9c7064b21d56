// SPDX-License-Identifier: MIT
// How the library's own code logs. The exported functions are wrappers of these.
#pragma once

#include "veltra/diagnostics/log.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace veltra {

inline constexpr std::uint32_t kHighestLogLevel = kLogDebug;

// Messages up to this many bytes are put together without the heap.
inline constexpr std::size_t kUsualMessage = 1024;

enum class Banner { No, Yes };

// Whether a line is kept among the recent ones (see recent_log_lines.h).
enum class Kept { No, Yes };

// What the environment wants (see QKLogWithSyslogBanner).
Banner wantedBanner() noexcept;

// Logs a finished message, which ends at its first NUL. Without a message the tag stands for it;
// without both, or with a level above the highest, nothing happens. `tag` is NUL-terminated or
// null. Thread: any but audio. Realtime-safe: no.
void logMessage(std::uint32_t level, Banner banner, const char* tag,
                std::optional<std::string_view> message, Kept kept = Kept::Yes) noexcept;

// The system's log alone gets the message: no line on standard error.
// Thread: any but audio. Realtime-safe: no.
void recordMessage(std::uint32_t level, const char* tag, std::string_view message) noexcept;

// Logs a text that went through a formatter and is read once more: each "%%" becomes "%".
// Thread: any but audio. Realtime-safe: no.
void logText(std::uint32_t level, Banner banner, const char* tag, std::string_view text) noexcept;

}  // namespace veltra
