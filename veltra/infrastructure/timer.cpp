// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/timer.h"

#include "veltra/platform/run_loop.h"

#include <algorithm>

namespace veltra {

QkTimerProxy::QkTimerProxy(Anchored* target, Action selector, void* userInfo,
                           QkTimer* owner) noexcept
    : m_target(target), m_selector(selector), m_userInfo(userInfo), m_owner(owner) {}

QkTimerProxy::~QkTimerProxy() = default;

void QkTimerProxy::action(RunLoopTimer& /*timer*/) {
    QkTimer* const owner = m_owner.get();
    if (owner == nullptr) return;
    if (!owner->isRepeating()) owner->invalidate();
    m_selector.send(m_target.get(), owner);  // may delete this proxy
}

QkTimer::QkTimer(double seconds, Anchored* target, Action action, void* userInfo,
                 bool repeats) noexcept
    : m_interval(seconds), m_repeats(repeats), m_proxy(target, action, userInfo, this) {}

QkTimer::~QkTimer() {
    invalidate();
}

void QkTimer::start() noexcept {
    startWithTimeInterval(m_interval);
}

void QkTimer::startWithTimeInterval(double seconds) noexcept {
    if (isValid()) return;
    m_timer.reset();
    RunLoop* const loop = RunLoop::current();
    if (loop == nullptr) return;
    const Nanoseconds shortest(seconds > 0.0 ? 1 : 0);  // what is above 0 stays above 0
    m_timer = loop->schedule({.interval = std::max(veltra::seconds(seconds), shortest),
                              .target = &m_proxy,
                              .action = veltra::action<&QkTimerProxy::action>(),
                              .userInfo = m_proxy.userInfo(),
                              .repeats = m_repeats,
                              .modes = kAllRunLoopModes});
}

void QkTimer::stop() noexcept {
    invalidate();
}

void QkTimer::invalidate() noexcept {
    if (m_timer != nullptr) m_timer->invalidate();
}

void QkTimer::fire() {
    if (m_timer != nullptr) m_timer->fire();
}

bool QkTimer::isValid() const noexcept {
    return m_timer != nullptr && m_timer->isValid();
}

bool QkTimer::isActive() const noexcept {
    return isValid();
}

}  // namespace veltra
