// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/backtracing_exception.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/diagnostics/detail/backtrace_text.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/symbol_names.h"

#include <algorithm>
#include <atomic>
#include <utility>

// The functions that capture the stack, or call one that does, keep a frame of their own, because
// callers count frames: they are never inlined, and do something after the call, so that it does
// not become a jump.
#define VELTRA_KEEP_FRAME asm volatile("" ::: "memory")

namespace veltra {

namespace {

constexpr std::size_t kUsualBacktrace = 1024;

constexpr std::string_view kHarmless[] = {
    "NSPortTimeoutException",
    "NSInvalidSendPortException",
    "NSPortSendException",
    "NSAccessibilityException",
};

constinit std::atomic<VLBacktracingException::SignificantRaiseHandler> raiseHandler{nullptr};

constexpr std::size_t countOf(int frames) noexcept {
    return frames > 0 ? static_cast<std::size_t>(frames) : 0;
}

bool isHarmless(std::string_view name) noexcept {
    return name.starts_with("Ws") ||
           std::find(std::begin(kHarmless), std::end(kHarmless), name) != std::end(kHarmless);
}

std::shared_ptr<Exception::UserInfo> userInfoFor(std::string_view name,
                                                 std::shared_ptr<Exception::UserInfo> given) {
    if (isHarmless(name)) return given;
    auto own = given != nullptr ? std::make_shared<Exception::UserInfo>(*given)
                                : std::make_shared<Exception::UserInfo>();
    // What came with another exception's backtrace is that one's stack.
    if (own->contains(kBacktraceKey) && own->contains(kStackTraceKey))
        own->erase(own->find(kStackTraceKey));
    own->insert_or_assign(std::string(kBacktraceKey), "");
    return own;
}

std::unique_ptr<Exception> makeBacktracing(std::string_view name, std::string_view reason,
                                           std::shared_ptr<Exception::UserInfo> userInfo) {
    return std::make_unique<VLBacktracingException>(name, reason, std::move(userInfo));
}

// The text under kBacktraceKey; null when there is none.
const PropertyValue* backtraceOf(const Exception& exception) noexcept {
    const auto& userInfo = exception.userInfo();
    if (userInfo == nullptr) return nullptr;
    const auto found = userInfo->find(kBacktraceKey);
    if (found == userInfo->end() || found->second.kind() != PropertyValue::Kind::String)
        return nullptr;
    return &found->second;
}

void logReport(const Exception& exception, std::string_view backtrace) noexcept {
    LocalTextBuffer<kUsualMessage> text;
    for (const std::string_view part :
         {std::string_view("*** NSEXCEPTION RAISED ***\n\t"),
          std::string_view(exception.name().c_str()), std::string_view(": "),
          std::string_view(exception.reason().c_str()), std::string_view("\n"), backtrace})
        text.append(part);
    logMessage(kLogNotice, wantedBanner(), nullptr, text.view());

    LocalTextBuffer<kUsualMessage> line;
    line.append("*** NSEXCEPTION RAISED *** ");
    line.append(exception.name());
    recordMessage(kLogNotice, nullptr, line.view());
}

void fillIn(Exception::UserInfo& userInfo, std::string_view backtrace, const detail::Calls& calls) {
    userInfo.insert_or_assign(std::string(kBacktraceKey), backtrace);
    if (userInfo.contains(kStackTraceKey)) return;
    LocalTextBuffer<kUsualBacktrace> stack;
    detail::appendStack(stack, calls.addresses());
    userInfo.emplace(kStackTraceKey, stack.view());
}

}  // namespace

void VLBacktracingException::install() noexcept {
    prepareSymbolNames();
    installExceptionFactory(makeBacktracing);
}

VLBacktracingException::VLBacktracingException(std::string_view name, std::string_view reason,
                                               std::shared_ptr<UserInfo> userInfo)
    : RaisedAs(name, reason, userInfoFor(name, std::move(userInfo))) {}

std::optional<std::string> VLBacktracingException::backtrace() const {
    const PropertyValue* const text = backtraceOf(*this);
    if (text == nullptr) return std::nullopt;
    return std::string(text->asString());
}

[[gnu::noinline]] void VLBacktracingException::raise() {
    const PropertyValue* const present = backtraceOf(*this);
    if (present != nullptr && present->asString().empty()) {
        detail::Calls calls;
        calls.capture(1);
        LocalTextBuffer<kUsualBacktrace> text;
        detail::appendBacktrace(text, calls.addresses());
        isDoneUnlessOutOfMemory([&] { fillIn(*userInfo(), text.view(), calls); });
        logReport(*this, text.view());
        const SignificantRaiseHandler handler =
            raiseHandler.load(std::memory_order_acquire);  // with setSignificantRaiseHandler()
        if (handler != nullptr) handler(*this);
    }
    throwSelf();
}

void VLBacktracingException::raiseWithoutReporting() {
    throwSelf();
}

void VLBacktracingException::setSignificantRaiseHandler(SignificantRaiseHandler handler) noexcept {
    raiseHandler.store(handler, std::memory_order_release);  // with raise()
}

[[gnu::noinline]] std::string VLBacktracingException::backtraceSkippingFrames(int framesToSkip) {
    detail::Calls calls;
    calls.capture(countOf(framesToSkip) + 1);
    LocalTextBuffer<kUsualBacktrace> text;
    detail::appendBacktrace(text, calls.addresses());
    return std::string(text.view());
}

[[gnu::noinline]] std::string VLBacktracingException::currentBacktrace() {
    std::string text = backtraceSkippingFrames(1);
    VELTRA_KEEP_FRAME;
    return text;
}

[[gnu::noinline]] void VLBacktracingException::logBacktraceSkippingFrames(
    int framesToSkip, std::optional<std::string_view> message) noexcept {
    detail::Calls calls;
    calls.capture(countOf(framesToSkip));
    LocalTextBuffer<kUsualBacktrace> text;
    detail::appendBacktrace(text, calls.addresses());
    if (message) logMessage(kLogNotice, wantedBanner(), nullptr, *message);
    const NoCancellation whileItIsWritten;
    StandardError& stream = StandardError::current();
    stream.write(stream.inspect(), {text.view(), "", ""});
}

[[gnu::noinline]] void VLBacktracingException::logBacktraceWithMessage(
    std::optional<std::string_view> message) noexcept {
    logBacktraceSkippingFrames(1, message);
    VELTRA_KEEP_FRAME;
}

}  // namespace veltra
