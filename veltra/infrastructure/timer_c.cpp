// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/timer_c.h"

#include "veltra/base/action.h"
#include "veltra/base/weak_anchor.h"
#include "veltra/infrastructure/timer.h"

#include <new>

namespace veltra {

struct VLTimer final : Anchored {
    VLTimer(double seconds, bool repeats, VLTimerCallback function, void* passed) noexcept
        : callback(function),
          context(passed),
          timer(seconds, this, action<&VLTimer::tick>(), nullptr, repeats) {}

    void tick(QkTimer&) { callback(this, context); }  // which may destroy this

    const VLTimerCallback callback;
    void* const context;
    QkTimer timer;
};

VLTimer* VLTimerCreate(double seconds, bool repeats, VLTimerCallback callback,
                       void* context) noexcept {
    if (callback == nullptr) return nullptr;
    return new (std::nothrow) VLTimer(seconds, repeats, callback, context);
}

void VLTimerDestroy(VLTimer* timer) noexcept {
    delete timer;
}

bool VLTimerStart(VLTimer* timer) noexcept {
    if (timer == nullptr) return false;
    timer->timer.start();
    return timer->timer.isActive();
}

void VLTimerStop(VLTimer* timer) noexcept {
    if (timer != nullptr) timer->timer.stop();
}

void VLTimerFire(VLTimer* timer) noexcept {
    if (timer != nullptr) timer->timer.fire();
}

bool VLTimerIsActive(const VLTimer* timer) noexcept {
    return timer != nullptr && timer->timer.isActive();
}

}  // namespace veltra
