// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/trace.h"

#include "veltra/base/immortal.h"
#include "veltra/diagnostics/indent_stack.h"
#include "veltra/diagnostics/trace_stream.h"
#include "veltra/platform/no_cancellation.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <new>

namespace veltra {

namespace {

constexpr int kDeepestIndent = 2048;

}  // namespace

bool IndentStack::push(int delta) noexcept {
    if (m_count == m_capacity) {
        const std::size_t capacity = m_capacity == 0 ? 1 : m_capacity * 2;
        std::unique_ptr<int[]> grown(new (std::nothrow) int[capacity]);
        if (grown == nullptr) return false;
        std::copy_n(m_depths.get(), m_count, grown.get());
        m_depths = std::move(grown);
        m_capacity = capacity;
    }
    const std::int64_t depth = std::int64_t{isEmpty() ? 0 : top()} + delta;
    m_depths[m_count++] = static_cast<int>(std::clamp<std::int64_t>(
        depth, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return true;
}

IndentStack& traceIndents() noexcept {
    static const Immortal<IndentStack> indents;
    return *indents;
}

void bbAssert(bool, const char*, const char*, TAssertType, int*) noexcept {}
void TraceOutIndentBegin(std::ostream&, const char*, const std::string&, int) noexcept {}
void TraceOutIndentEnd(std::ostream&) noexcept {}
void TraceOutContainerBegin(std::ostream&, const char*, int, const std::string&, int) noexcept {}
void TraceOutContainerEnd(std::ostream&) noexcept {}
void TraceOutContainerEndl(std::ostream&) noexcept {}

void IndentToCout() noexcept {
    const IndentStack& indents = traceIndents();
    if (indents.isEmpty()) return;
    const NoCancellation untilWritten;
    try {
        for (int left = std::min(indents.top(), kDeepestIndent); left > 0; --left)
            std::cout.put(' ');
    } catch (...) {  // NOLINT(bugprone-empty-catch): from a host's buffer; the stream's state tells
    }
}

extern "C" void QKOutputMemory(const void*, ptrdiff_t) noexcept {}

}  // namespace veltra
