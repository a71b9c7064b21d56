// SPDX-License-Identifier: MIT
// The timers of the main thread on Qt's event loop: they go on in every nested loop of Qt, so
// during drags, in menus and behind modal dialogs.
#pragma once

#include "veltra/platform/run_loop.h"

#include <QTimer>

namespace veltra {

class QtRunLoop final : public RunLoop {
public:
    QtRunLoop();

protected:
    void deadlineChanged(std::optional<Moment> deadline) noexcept override;

private:
    void wake();

    QTimer m_timer;
};

}  // namespace veltra
