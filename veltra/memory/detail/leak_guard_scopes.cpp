// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/leak_guard_scopes.h"

#include <algorithm>
#include <utility>

namespace veltra::detail {

bool OpenScopes::contain(const OpenScope& scope) const noexcept {
    return std::any_of(m_scopes, m_scopes + m_count, [&](const OpenScope& open) {
        return open.frame == scope.frame && open.thread == scope.thread;
    });
}

std::size_t OpenScopes::find(const FrameIdentity& frame) const noexcept {
    for (std::size_t i = m_count; i > 0; --i) {
        const FrameIdentity& open = m_scopes[i - 1].frame;
        if (open.cfa == frame.cfa && (frame.function == 0 || open.function == frame.function))
            return i - 1;
    }
    return m_count;
}

OpenScope* OpenScopes::append(const OpenScope& scope, OpenScope* larger) noexcept {
    std::copy_n(m_scopes, m_count, larger);
    larger[m_count++] = scope;
    change();
    return std::exchange(m_scopes, larger);
}

OpenScope* OpenScopes::remove(std::size_t index, OpenScope* smaller) noexcept {
    std::copy(m_scopes + index + 1, m_scopes + m_count, m_scopes + index);
    --m_count;
    change();
    if (smaller == nullptr && m_count > 0) return nullptr;
    std::copy_n(m_scopes, m_count, smaller);
    return std::exchange(m_scopes, smaller);
}

ScopesAround::ScopesAround(const OpenScopes& scopes, std::uint32_t thread,
                           std::uintptr_t address) noexcept {
    for (std::size_t i = 0; i < scopes.m_count; ++i) {
        const OpenScope& scope = scopes.m_scopes[i];
        if (scope.thread != thread) continue;
        ++m_own;
        if (scope.frame.cfa > address) add(scope.frame);
    }
}

void ScopesAround::add(const FrameIdentity& frame) noexcept {
    m_highest = std::max(m_highest, frame.cfa);
    m_isComplete = m_count < kMost;
    if (!m_isComplete) return;
    m_cfas[m_count] = frame.cfa;
    m_functions[m_count++] = frame.function;
}

std::uintptr_t ScopesAround::nextAbove(std::uintptr_t address) const noexcept {
    if (address >= m_highest) return kNoMoreFrames;
    if (!m_isComplete) return kNextFrame;
    std::uintptr_t next = m_highest;
    for (std::size_t i = 0; i < m_count; ++i)
        if (m_cfas[i] > address) next = std::min(next, m_cfas[i]);
    return next;
}

}  // namespace veltra::detail
