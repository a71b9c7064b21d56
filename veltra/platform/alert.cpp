// SPDX-License-Identifier: MIT
#include "veltra/platform/alert.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr double kLongestTimeoutSeconds = 24.0 * 60.0 * 60.0;

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
    if (!(alert.timeoutSeconds > 0.0)) return AlertAnswer::TimedOut;
    Alert asked = alert;
    asked.timeoutSeconds = std::min(alert.timeoutSeconds, kLongestTimeoutSeconds);
    if (asked.defaultButton.empty()) asked.defaultButton = "OK";
    const AlertAnswer answer = AlertPresenter::current().present(asked);
    return isOffered(answer, asked) ? answer : AlertAnswer::TimedOut;
}

}  // namespace veltra
