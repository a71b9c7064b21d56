#include "veltra/platform/alert.h"

namespace veltra {

namespace {

class LinuxAlertPresenter final : public AlertPresenter {
public:
    AlertAnswer present(const Alert& /*alert*/) noexcept override { return AlertAnswer::TimedOut; }
};

}  // namespace

AlertPresenter& AlertPresenter::platform() noexcept {
    static LinuxAlertPresenter presenter;
    return presenter;
}

}  // namespace veltra
