// SPDX-License-Identifier: MIT
#include "veltra/base/weak_anchor.h"

namespace veltra {

namespace detail {

void WeakLink::link(const Anchored& object) noexcept {
    if (object.m_isCut) return;
    m_next = object.m_firstWeakLink;
    m_previous = &object.m_firstWeakLink;
    if (m_next != nullptr) m_next->m_previous = &m_next;
    object.m_firstWeakLink = this;
}

void WeakLink::unlink() noexcept {
    if (m_previous == nullptr) return;
    *m_previous = m_next;
    if (m_next != nullptr) m_next->m_previous = m_previous;
    m_next = nullptr;
    m_previous = nullptr;
}

}  // namespace detail

Anchored::~Anchored() {
    cutAnchor();
}

void Anchored::cutAnchor() noexcept {
    m_isCut = true;
    while (m_firstWeakLink != nullptr)
        m_firstWeakLink->unlink();
}

}  // namespace veltra
