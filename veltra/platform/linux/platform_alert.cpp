// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/linux/alert_ways.h"
#include "veltra/platform/linux/deadline.h"
#include "veltra/platform/port.h"

#include <array>

namespace veltra {

namespace {

constexpr std::array<AlertWay, 2> kWays = {askInWindow, askOnTerminal};

class LinuxAlertPresenter final : public AlertPresenter {
public:
    AlertAnswer present(const Alert& alert) noexcept override { return askInTurn(alert, kWays); }
};

}  // namespace

AlertPresenter& platformAlertPresenter() noexcept {
    static const Immortal<LinuxAlertPresenter> presenter;
    return *presenter;
}

AlertAnswer askInTurn(const Alert& alert, std::span<const AlertWay> ways) noexcept {
    const Deadline deadline(alert.timeout);
    Alert asked = alert;
    for (const AlertWay way : ways) {
        asked.timeout = deadline.timeLeft();
        if (asked.timeout == Nanoseconds()) break;
        if (const std::optional<AlertAnswer> answer = way(asked)) return *answer;
    }
    return AlertAnswer::TimedOut;
}

}  // namespace veltra
