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
    return std::exchange(m_scopes, larger);
}

OpenScope* OpenScopes::remove(std::size_t index, OpenScope* smaller) noexcept {
    std::copy(m_scopes + index + 1, m_scopes + m_count, m_scopes + index);
    --m_count;
    if (smaller == nullptr && m_count > 0) return nullptr;
    std::copy_n(m_scopes, m_count, smaller);
    return std::exchange(m_scopes, smaller);
}

ScopesAround::ScopesAround(const OpenScopes& scopes, std::uint32_t thread,
                           std::uintptr_t address) noexcept {
    for (std::size_t i = 0; i < scopes.m_count; ++i) {
        const OpenScope& scope = scopes.m_scopes[i];
        if (scope.thread != thread) continue;
        m_hasThread = true;
        if (scope.frame.cfa <= address) continue;
        m_highest = std::max(m_highest, scope.frame.cfa);
        if (m_count < m_frames.size()) {
            m_frames[m_count++] = scope.frame;
        } else {
            m_isComplete = false;
        }
    }
}

bool ScopesAround::contains(const FrameIdentity& frame) const noexcept {
    return std::find(m_frames.begin(), m_frames.begin() + m_count, frame) !=
           m_frames.begin() + m_count;
}

}  // namespace veltra::detail
