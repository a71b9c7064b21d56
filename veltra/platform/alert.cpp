// SPDX-License-Identifier: MIT
#include "veltra/platform/alert.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr Nanoseconds kLongestTimeout = seconds(86'400.0);

bool isOffered(AlertAnswer answer, const Alert& alert) noexcept {
    switch (answer) {
        case AlertAnswer::Default:
            return true;
        case AlertAnswer::Alternate:
            return !alert.alternateButton.empty();
        case AlertAnswer::Other:
            return !alert.otherButton.empty();
        case AlertAnswer::TimedOut:
            return true;
    }
    return false;
}

}  // namespace

AlertPresenter::~AlertPresenter() = default;

AlertPresenter& AlertPresenter::platform() noexcept {
    return platformAlertPresenter();
}

template <>
struct OwnImplementation<AlertPresenter> : OwnFrom<platformAlertPresenter> {};
template class Installable<AlertPresenter>;

AlertAnswer presentAlert(const Alert& alert) noexcept {
    if (alert.timeout <= Nanoseconds()) return AlertAnswer::TimedOut;
    Alert asked = alert;
    asked.timeout = std::min(alert.timeout, kLongestTimeout);
    if (asked.defaultButton.empty()) asked.defaultButton = "OK";
    const NoCancellation untilAnswered;
    const AlertAnswer answer = AlertPresenter::current().present(asked);
    return isOffered(answer, asked) ? answer : AlertAnswer::TimedOut;
}

}  // namespace veltra
