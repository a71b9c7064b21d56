// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/assertion.h"

#include "veltra/base/whole_characters.h"
#include "veltra/diagnostics/failed_assertion.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/platform/alert.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace veltra {

namespace {

constexpr Nanoseconds kAlertTimeout = seconds(60.0);
constexpr std::size_t kTextSize = 4096;

// Meant for one thread; atomic so that a second one reads an old value and nothing worse.
std::atomic<int> assertionHasFailed{0};

AlertAnswer report(std::string_view text, std::string_view otherButton) noexcept {
    logText(kLogError, wantedBanner(), "dbgASSERT", text);
    return presentAlert({.header = "Assertion failed",
                         .message = text,
                         .defaultButton = "Resume",
                         .alternateButton = "Debugger",
                         .otherButton = otherButton,
                         .timeout = kAlertTimeout});
}

const char* orNull(const char* text) noexcept {
    return text != nullptr ? text : "(null)";
}

}  // namespace

int failAssertion(const char* expression, const char* location,
                  std::int32_t* showCounter) noexcept {
    assertionHasFailed.store(1, std::memory_order_relaxed);
    if (showCounter != nullptr && *showCounter <= 0 && *showCounter != -1) return 0;

    std::array<char, kTextSize> memory;
    const int length = std::snprintf(memory.data(), memory.size(), "ASSERT(%s) in %s failed.\n",
                                     orNull(expression), orNull(location));
    std::string_view text = memory.data();
    if (length < 0 || static_cast<std::size_t>(length) > text.size()) text = wholeCharacters(text);
    const AlertAnswer answer = report(text, showCounter != nullptr ? "Don't show again" : "Stop");
    if (showCounter != nullptr && *showCounter > 0) --*showCounter;
    if (answer == AlertAnswer::Alternate) return 1;
    if (answer != AlertAnswer::Other) return 0;
    if (showCounter == nullptr) std::exit(1);  // NOLINT(concurrency-mt-unsafe): the user says stop
    *showCounter = 0;
    return 0;
}

extern "C" {

int dbgASSERT(int condition, const char* expression, const char* location,
              int32_t* showCounter) noexcept {
    if (condition == 0) return failAssertion(expression, location, showCounter);
    assertionHasFailed.store(0, std::memory_order_relaxed);
    return 0;
}

int dbgAssertionFailed() noexcept {
    return assertionHasFailed.exchange(0, std::memory_order_relaxed);
}

}  // extern "C"

}  // namespace veltra
