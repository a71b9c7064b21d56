// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/progress_indicator.h"

#include "veltra/base/action.h"
#include "veltra/base/string_object_text.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/run_loop.h"

#include <atomic>
#include <bit>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

namespace veltra {

namespace {

constinit const char emptyMarker = 0;

constexpr Nanoseconds kSixtieth(16'666'667);  // the shortest that gives no more than 60

// Guards the service, and the list of the indicators that can be cancelled. Nobody is called out
// to while it is held.
ForkSafeLock& serviceLock() noexcept {
    static constinit ForkSafeLock lock;
    [[maybe_unused]] static const bool isForkSafe = (lock.holdAcrossForks(), true);
    return lock;
}

constinit VLProgressIndicatorService service{};
constinit VLProgressIndicator* firstIndicator = nullptr;

// The newest value that waits, as its bits.
class PostedValue {
public:
    void post(double value) noexcept {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        m_bits.store(bits != kNothing ? bits : kSameKind, std::memory_order_release);  // with take
    }

    bool isWaiting() const noexcept { return m_bits.load(std::memory_order_relaxed) != kNothing; }

    void drop() noexcept {
        if (isWaiting()) m_bits.store(kNothing, std::memory_order_relaxed);
    }

    std::optional<double> take() noexcept {
        if (!isWaiting()) return std::nullopt;
        const std::uint64_t bits = m_bits.exchange(kNothing, std::memory_order_acquire);  // post
        if (bits == kNothing) return std::nullopt;  // a direct call was faster
        return std::bit_cast<double>(bits);
    }

private:
    // A NaN that no arithmetic makes. Who posts it all the same gets another NaN delivered.
    static constexpr std::uint64_t kNothing = 0xFFFF'FFFF'FFFF'FFFF;
    static constexpr std::uint64_t kSameKind = 0xFFFF'FFFF'FFFF'FFFE;

    std::atomic<std::uint64_t> m_bits{kNothing};
};

// The newest text that waits, with a reference of its own. Null is a text like any other.
class PostedText {
public:
    PostedText() noexcept = default;
    PostedText(const PostedText&) = delete;
    PostedText& operator=(const PostedText&) = delete;
    ~PostedText() { drop(); }

    void post(const VLString* text) noexcept { replace(retainString(text)); }

    bool isWaiting() const noexcept { return m_text.load(std::memory_order_relaxed) != &s_nothing; }

    void drop() noexcept {
        if (isWaiting()) replace(&s_nothing);
    }

    // The reference goes to the caller.
    std::optional<const VLString*> take() noexcept {
        if (!isWaiting()) return std::nullopt;
        const VLString* const text = m_text.exchange(&s_nothing, std::memory_order_acq_rel);
        if (text == &s_nothing) return std::nullopt;
        return text;
    }

private:
    // Both exchanges, here and in take(), are each other's partners: what is taken out was wholly
    // put in, and what is released here was read by nobody else.
    void replace(const VLString* text) noexcept {
        const VLString* const before = m_text.exchange(text, std::memory_order_acq_rel);
        if (before != &s_nothing) releaseString(before);
    }

    static constexpr VLString s_nothing = constantString(u"");

    std::atomic<const VLString*> m_text{&s_nothing};
};

}  // namespace

struct VLProgressIndicator : Anchored {
    VLProgressIndicator(const VLProgressIndicatorService& callbacks, const VLString* itsTitle)
        : acquire(callbacks.acquire),
          release(callbacks.release),
          setValue(callbacks.setValue),
          setInfoText(callbacks.setInfoText),
          title(itsTitle) {}

    // Both may end the indicator.
    bool deliver() noexcept;  // whether there was anything
    void show(const VLString* text) noexcept;

    void tick() noexcept { VLDeliverProgressIndicatorUpdates(this); }

    void* (*const acquire)(const VLString*, const void*);
    void (*const release)(void*);
    std::int32_t (*const setValue)(void*, double);
    void (*const setInfoText)(void*, const VLString*);
    void* handle = nullptr;
    const VLString* title;               // retained
    const VLString* infoText = nullptr;  // retained

    std::atomic<bool> isCancelled{false};
    PostedValue postedValue;
    PostedText postedText;
    std::shared_ptr<RunLoopTimer> timer;  // null: delivered by hand
    Moment start;                         // the first delivery
    std::int64_t lastSixtieth = -1;       // since then, in which there was a delivery

    VLProgressIndicator* previous = nullptr;  // of those that can be cancelled, under the lock
    VLProgressIndicator* next = nullptr;
};

namespace {

Moment now() noexcept {
    return Clocks::current().monotonic().moment();
}

void enlist(VLProgressIndicator& indicator) noexcept {
    const std::lock_guard lock(serviceLock());
    indicator.next = firstIndicator;
    if (firstIndicator != nullptr) firstIndicator->previous = &indicator;
    firstIndicator = &indicator;
}

void strike(VLProgressIndicator& indicator) noexcept {
    const std::lock_guard lock(serviceLock());
    (indicator.previous != nullptr ? indicator.previous->next : firstIndicator) = indicator.next;
    if (indicator.next != nullptr) indicator.next->previous = indicator.previous;
}

VLProgressIndicatorService registeredService() noexcept {
    const std::lock_guard lock(serviceLock());
    return service;
}

bool startTimer(VLProgressIndicator& indicator) noexcept {
    RunLoop* const loop = RunLoop::current();
    if (loop == nullptr) return false;
    TimerRequest request;
    request.interval = kSixtieth;
    request.target = &indicator;
    request.action = action<&VLProgressIndicator::tick>();
    request.repeats = true;
    request.modes = kAllRunLoopModes;
    indicator.timer = loop->schedule(request);
    return indicator.timer != nullptr;
}

VLProgressIndicator* acquire(const VLString* title, const void* identifier,
                             bool isPosted) noexcept {
    std::unique_ptr<VLProgressIndicator> made(new (std::nothrow)
                                                  VLProgressIndicator(registeredService(), title));
    if (made == nullptr) return nullptr;
    const bool isDelivered = made->setValue != nullptr || made->setInfoText != nullptr;
    if (isPosted && isDelivered && !startTimer(*made)) return nullptr;
    retainString(title);
    if (made->acquire != nullptr) made->handle = made->acquire(title, identifier);
    enlist(*made);
    return made.release();
}

}  // namespace

bool VLProgressIndicator::deliver() noexcept {
    const WeakPointer<VLProgressIndicator> self(this);
    const std::optional<double> value = postedValue.take();
    if (value && setValue != nullptr) setValue(handle, *value);
    if (!self) return true;
    const std::optional<const VLString*> text = postedText.take();
    if (text) {
        show(*text);
        releaseString(*text);
    }
    return value || text;
}

void VLProgressIndicator::show(const VLString* text) noexcept {
    const WeakPointer<VLProgressIndicator> self(this);
    retainString(text);
    if (setInfoText != nullptr) setInfoText(handle, text);
    if (!self) return releaseString(text);
    releaseString(std::exchange(infoText, text));
}

extern "C" {

constinit const void* const kVLProgressIndicatorEmptyID = &emptyMarker;

void VLProvideProgressIndicatorService(const VLProgressIndicatorService* newService) noexcept {
    const bool isWhole =
        newService != nullptr && newService->acquire != nullptr && newService->release != nullptr;
    const std::lock_guard lock(serviceLock());
    service = isWhole ? *newService : VLProgressIndicatorService{};
}

VLProgressIndicator* VLAcquireProgressIndicator(const VLString* title,
                                                const void* identifier) noexcept {
    return acquire(title, identifier, false);
}

VLProgressIndicator* VLAcquirePostedProgressIndicator(const VLString* title,
                                                      const void* identifier) noexcept {
    return acquire(title, identifier, true);
}

void VLReleaseProgressIndicator(VLProgressIndicator* indicator) noexcept {
    if (indicator == nullptr) return;
    strike(*indicator);
    if (indicator->timer != nullptr) indicator->timer->invalidate();
    indicator->deliver();
    if (indicator->release != nullptr) indicator->release(indicator->handle);
    releaseString(indicator->title);
    releaseString(indicator->infoText);
    delete indicator;
}

int32_t VLSetProgressIndicatorValue(VLProgressIndicator* indicator, double value) noexcept {
    if (indicator == nullptr) return 0;
    indicator->postedValue.drop();
    return indicator->setValue != nullptr ? indicator->setValue(indicator->handle, value) : 0;
}

void VLSetProgressIndicatorInfoText(VLProgressIndicator* indicator, const VLString* text) noexcept {
    if (indicator == nullptr) return;
    indicator->postedText.drop();
    indicator->show(text);
}

void VLPostProgressIndicatorValue(VLProgressIndicator* indicator, double value) noexcept {
    if (indicator != nullptr) indicator->postedValue.post(value);
}

void VLPostProgressIndicatorInfoText(VLProgressIndicator* indicator,
                                     const VLString* text) noexcept {
    if (indicator != nullptr) indicator->postedText.post(text);
}

bool VLDeliverProgressIndicatorUpdates(VLProgressIndicator* indicator) noexcept {
    if (indicator == nullptr) return false;
    if (!indicator->postedValue.isWaiting() && !indicator->postedText.isWaiting()) return false;
    const Moment time = now();
    if (indicator->lastSixtieth < 0) indicator->start = time;
    const std::int64_t sixtieth = (time - indicator->start) / kSixtieth;
    if (sixtieth == indicator->lastSixtieth) return false;
    indicator->lastSixtieth = sixtieth;
    return indicator->deliver();
}

void VLCancelProgressIndicator(const void* handle) noexcept {
    if (handle == nullptr) return;
    const std::lock_guard lock(serviceLock());
    for (VLProgressIndicator* each = firstIndicator; each != nullptr; each = each->next)
        if (each->handle == handle)
            each->isCancelled.store(true, std::memory_order_release);  // with the query
}

bool VLProgressIndicatorIsCancelled(const VLProgressIndicator* indicator) noexcept {
    return indicator != nullptr &&
           indicator->isCancelled.load(
               std::memory_order_acquire);  // with VLCancelProgressIndicator
}

}  // extern "C"

}  // namespace veltra
