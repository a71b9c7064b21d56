// SPDX-License-Identifier: MIT
// A pointer to a delegate: somebody who is asked and told, and is not retained. A delegate of an
// Anchored class may die first, and is then no longer called; any other must be unset before.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/weak_anchor.h"

namespace veltra {

// D is an abstract class; the objects behind it may be of any class.
template <typename D>
class DelegatePointer {
public:
    DelegatePointer() noexcept = default;

    // Points to `delegate`, which may be null and is looked at to learn whether it is Anchored.
    DelegatePointer(D* delegate) noexcept
        : m_delegate(delegate),
          m_anchor(dynamic_cast<Anchored*>(delegate)),
          m_isAnchored(static_cast<bool>(m_anchor)) {}

    // Null when there is none, or when it is gone.
    D* get() const noexcept { return m_isAnchored && !m_anchor ? nullptr : m_delegate; }
    D* operator->() const noexcept { return get(); }
    explicit operator bool() const noexcept { return get() != nullptr; }

private:
    D* m_delegate = nullptr;
    WeakPointer<Anchored> m_anchor;
    bool m_isAnchored = false;
};

}  // namespace veltra
