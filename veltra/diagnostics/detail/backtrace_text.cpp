// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/backtrace_text.h"

#include "veltra/base/number_text.h"
#include "veltra/platform/symbol_names.h"

#include <algorithm>
#include <charconv>

namespace veltra::detail {

namespace {

constexpr int kMostLinesBeforeTheLast = 149;
constexpr std::string_view kBetweenAddresses = "  ";

// How the names of functions begin that only raise exceptions.
constexpr std::string_view kRaising[] = {
    "+[NSException ",
    "-[NSAssertionHandler ",
    "veltra::raiseException(",
    "veltra::Exception::",
    "veltra::VLBacktracingException::",
};

constexpr std::string_view kOutermost[] = {"main", "NSApplicationMain"};

bool onlyRaises(std::string_view name) noexcept {
    return std::any_of(std::begin(kRaising), std::end(kRaising),
                       [name](std::string_view start) { return name.starts_with(start); });
}

void appendAddress(TextBuffer& text, std::uintptr_t address) noexcept {
    text.append("0x");
    text.append(NumberText::hexadecimal(address).view());
}

}  // namespace

void Calls::parse(std::string_view stack) noexcept {
    m_count = 0;
    while (!stack.empty() && m_count < kMost) {
        const std::size_t end = std::min(stack.find(kBetweenAddresses), stack.size());
        std::string_view word = stack.substr(0, end);
        stack.remove_prefix(std::min(end + kBetweenAddresses.size(), stack.size()));
        if (word.starts_with(' ')) word.remove_prefix(1);  // of a gap of three blanks
        if (!word.starts_with("0x")) continue;
        word.remove_prefix(2);
        const char* const last = word.data() + word.size();
        constexpr int kBase = 16;
        const auto read = std::from_chars(word.data(), last, m_addresses[m_count], kBase);
        if (read.ec == std::errc() && read.ptr == last) ++m_count;
    }
}

bool BacktraceLines::add(std::string_view name) noexcept {
    if (m_count > kMostLinesBeforeTheLast) {
        m_text.append("\t...more...\n");
        return false;
    }
    if (m_count == 0 && onlyRaises(name)) return true;
    m_text.append("\t");
    m_text.append(name);
    m_text.append("\n");
    ++m_count;
    return std::find(std::begin(kOutermost), std::end(kOutermost), name) == std::end(kOutermost);
}

void appendBacktrace(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept {
    BacktraceLines lines(text);
    for (const std::uintptr_t call : calls) {
        const SymbolName symbol = symbolNameOf(call);
        LocalTextBuffer<32> address;
        if (symbol.function[0] == '\0') appendAddress(address, call);
        if (!lines.add(symbol.function[0] != '\0' ? symbol.function.data() : address.view()))
            return;
    }
}

void appendStack(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept {
    std::string_view separator;
    for (const std::uintptr_t call : calls) {
        text.append(separator);
        appendAddress(text, call);
        separator = kBetweenAddresses;
    }
}

void appendNamedCalls(TextBuffer& text, std::span<const std::uintptr_t> calls) noexcept {
    for (const std::uintptr_t call : calls) {
        const SymbolName symbol = symbolNameOf(call);
        appendAddress(text, call);
        text.append("  ");
        text.append(symbol.function[0] != '\0' ? symbol.function.data() : "??");
        text.append("\n");
    }
}

}  // namespace veltra::detail
