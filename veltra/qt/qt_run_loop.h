// SPDX-License-Identifier: MIT
// The timers of the main thread on Qt's event loop: they keep firing in every nested loop of Qt,
// that is during drags, in menus and behind modal dialogs.
//
// Qt's timers count whole milliseconds. A deadline is rounded up to the next one, so a timer of
// less than a millisecond fires at most once a millisecond here and skips the ticks between;
// PollRunLoop keeps such intervals to the nanosecond.
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
