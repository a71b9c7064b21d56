// SPDX-License-Identifier: MIT
// A guard for system calls that must have no other effect on the thread than their own.
#pragma once

#include <csignal>
#include <initializer_list>

#include <pthread.h>
#include <time.h>

namespace veltra {

// Holds back the thread's signals: handlers run after the guard has gone, and a signal that a call
// under the guard has caused can be taken away again. A background process that writes to its
// terminal is not stopped either. Faults are not held back: the kernel would end the process at
// once.
class SignalHold {
public:
    SignalHold() noexcept {
        static const sigset_t all = [] {
            sigset_t set;
            ::sigfillset(&set);
            for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
                ::sigdelset(&set, fault);
            return set;
        }();
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
        // What was not held back before cannot be waiting now.
        if (wasHeld(SIGPIPE) || wasHeld(SIGXFSZ)) ::sigpending(&m_waiting);
    }
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;
    ~SignalHold() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

    // To be called when a system call has answered the error that comes with `signal`.
    void takeAway(int signal) noexcept {
        if (wasHeld(signal) && ::sigismember(&m_waiting, signal) == 1) return;
        sigset_t only;
        ::sigemptyset(&only);
        ::sigaddset(&only, signal);
        const timespec atOnce{};
        ::sigtimedwait(&only, nullptr, &atOnce);
    }

private:
    bool wasHeld(int signal) const noexcept { return ::sigismember(&m_before, signal) == 1; }

    sigset_t m_before;
    sigset_t m_waiting;  // set only when SIGPIPE or SIGXFSZ was held before
};

}  // namespace veltra
