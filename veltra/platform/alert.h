// SPDX-License-Identifier: MIT
// A question that stops the caller until the user has answered or a time has run out. Meant for
// moments in which something has already gone wrong: it asks nothing of the host's own windows and
// event loops, and with nobody there to answer it gives up rather than wait.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/base/time.h"
#include "veltra/export.h"

#include <string_view>

namespace veltra {

// What the user chose. The values are stable: a host may store or send them.
enum class AlertAnswer {
    Default = 0,
    Alternate = 1,
    Other = 2,
    TimedOut = 3,  // no button was pressed in time, or nobody could be asked
};

// What the question is about. A presenter shows it by an icon, say.
enum class AlertStyle {
    Warning,   // something did not go as it should
    Critical,  // the program may be damaged
};

// One question. The texts are UTF-8, need not be terminated, and are only read during the call;
// bytes that are not UTF-8, and control characters, are shown as visible stand-ins or left out.
// Very long texts are cut where they are shown.
struct Alert {
    std::string_view header;           // a few words, shown prominently
    std::string_view message;          // the question itself; may have several lines
    std::string_view defaultButton;    // Return and Escape press it; "OK" when empty
    std::string_view alternateButton;  // not offered when empty
    std::string_view otherButton;      // not offered when empty

    // How long the question may stand. 0 or negative: nothing is shown, the answer is TimedOut.
    // More than a day counts as a day: an alert that nobody sees must end by itself.
    Nanoseconds timeout{};

    AlertStyle style = AlertStyle::Warning;  // how serious it is; a presenter's choice of icon
};

class AlertPresenter;
extern template class VELTRA_EXPORT Installable<AlertPresenter>;

// Who shows alerts. A host derives from it to use dialogs of its own; tests answer by program.
class VELTRA_EXPORT AlertPresenter : public Installable<AlertPresenter> {
public:
    virtual ~AlertPresenter();

    // Shows `alert` and waits for the answer, no longer than its time-out. Called on whichever
    // thread has the question, several at a time too: a presenter that may only show windows on one
    // thread hands every other call on to platform(). Waiting for that one thread instead would
    // lock up for good when it in turn waits for the caller.
    // Thread: any but audio. Realtime-safe: no.
    virtual AlertAnswer present(const Alert& alert) noexcept = 0;

    // The platform's own presenter. On Linux, in this order: a helper program that opens a window,
    // so that a host without an event loop, or with a stuck one, can ask too; the controlling
    // terminal, when the host's process group is in its foreground; else nobody can be asked, and
    // the answer is TimedOut at once. A second alert is not shown on a terminal on which one
    // stands.
    // Thread: any. Realtime-safe: yes (naming it; showing an alert is not).
    static AlertPresenter& platform() noexcept;
};

// Asks through AlertPresenter::current() and waits for the answer. An answer that is none of the
// four values, or that names a button which was not offered, comes back as TimedOut. Until then the
// thread cannot be cancelled.
// Thread: any but audio: it waits for a human being. Realtime-safe: no.
VELTRA_EXPORT AlertAnswer presentAlert(const Alert& alert) noexcept;

}  // namespace veltra
