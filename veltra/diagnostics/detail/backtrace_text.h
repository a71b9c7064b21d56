// SPDX-License-Identifier: MIT
// Calls as text for people.
#pragma once

#include "veltra/diagnostics/text_buffer.h"
#include "veltra/platform/stack_walk.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace veltra::detail {

// The stack as far as reports look at it: the lines of a backtrace, and in front of them more
// frames of the raising machinery than anybody will have.
class Calls {
public:
    static constexpr std::size_t kMost = 512;

    Calls() noexcept = default;

    // The stack from the function that calls this one, without the first `skipped` functions of it.
    // Always inlined: it must add no frame of its own.
    [[gnu::always_inline]] void capture(std::size_t skipped) noexcept {
        m_count = captureCalls(m_addresses, skipped);
    }

    // Reads "0x12ab  0x34cd"; what is no such address is left out.
    void parse(std::string_view stack) noexcept;

    std::span<const std::uintptr_t> addresses() const noexcept {
        return std::span(m_addresses).first(m_count);
    }

private:
    std::array<std::uintptr_t, kMost> m_addresses;
    std::size_t m_count = 0;
};

// Writes names as the lines of a backtrace, as backtracing_exception.h describes it.
class BacktraceLines {
public:
    explicit BacktraceLines(TextBuffer& text) noexcept : m_text(text) {}

    // False when the backtrace ends here.
    bool add(std::string_view name) noexcept;

private:
    TextBuffer& m_text;
    int m_count = 0;  // lines written
};

void appendBacktrace(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept;

// "0x12ab  0x34cd", as Calls::parse() reads it.
void appendStack(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept;

// A line for each call: its address, and the name of the function.
void appendNamedCalls(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept;

}  // namespace veltra::detail
