// SPDX-License-Identifier: MIT
// Timers in a host on Qt that shows no window of ours. (With Veltra::Qt the first of its objects
// puts the timers on Qt's loop by itself.)
#include "examples/timers/metronome.h"
#include "veltra/platform/poll_run_loop.h"

#include <QCoreApplication>
#include <QSocketNotifier>

int main(int argc, char** argv) {
    QCoreApplication host(argc, argv);
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);
    Metronome metronome([] { QCoreApplication::quit(); });

    QSocketNotifier due(loop.descriptor(), QSocketNotifier::Read);
    QObject::connect(&due, &QSocketNotifier::activated, [&loop] { loop.runDue(); });
    QCoreApplication::exec();
    return metronome.isDone() ? 0 : 1;
}
