// SPDX-License-Identifier: MIT
// Timers in a host that runs GLib's main loop, as one with GTK does.
#include "examples/timers/metronome.h"
#include "veltra/platform/poll_run_loop.h"

#include <glib-unix.h>

namespace {

int runDue(int /*descriptor*/, GIOCondition /*condition*/, void* loop) {
    static_cast<veltra::RunLoop*>(loop)->runDue();
    return 1;  // go on watching
}

}  // namespace

int main() {
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);
    GMainLoop* const host = g_main_loop_new(nullptr, 0);
    Metronome metronome([host] { g_main_loop_quit(host); });

    const unsigned watch = g_unix_fd_add(loop.descriptor(), G_IO_IN, runDue, &loop);
    // So that timers keep firing in a nested loop that an action runs.
    g_source_set_can_recurse(g_main_context_find_source_by_id(nullptr, watch), 1);
    g_main_loop_run(host);

    g_source_remove(watch);
    g_main_loop_unref(host);
    return metronome.isDone() ? 0 : 1;
}
