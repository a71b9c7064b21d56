// SPDX-License-Identifier: MIT
// A user who answers alerts by program. In force while it lives.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/platform/alert.h"

#include <functional>
#include <string>

namespace veltra::testing {

class FakeUser final : public InForce<AlertPresenter> {
public:
    AlertAnswer present(const Alert& alert) noexcept override {
        ++asked;
        text = alert.header;
        for (const auto part :
             {alert.message, alert.defaultButton, alert.alternateButton, alert.otherButton})
            text.append("|").append(part);
        isCritical = alert.style == AlertStyle::Critical;
        timeout = alert.timeout;
        if (whileAsked) whileAsked();
        return answer;
    }

    AlertAnswer answer = AlertAnswer::TimedOut;
    std::function<void()> whileAsked;
    int asked = 0;
    std::string text;  // header, message and buttons
    bool isCritical = false;
    Nanoseconds timeout;
};

}  // namespace veltra::testing
