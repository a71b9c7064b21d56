// SPDX-License-Identifier: MIT
// Who is running: the names and numbers of the process and of the calling thread.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstdint>
#include <string_view>

namespace veltra {

class Process;
extern template class VELTRA_EXPORT Installable<const Process>;

class VELTRA_EXPORT Process : public Installable<const Process> {
public:
    virtual ~Process();

    // The program's name without its folder; the view is good until the host changes the name.
    // Thread: any. Realtime-safe: yes.
    virtual std::string_view programName() const noexcept = 0;

    // Read once and kept; a forked child reads its own, also one that no fork handler has seen.
    // Thread: any. Realtime-safe: no (the first call in a process enters the kernel).
    virtual std::int32_t processId() const noexcept = 0;

    // The system's number for the calling thread, unique among all threads of the machine. Read
    // once a thread and kept; a forked child reads its own.
    // Thread: any. Realtime-safe: no (the first call on a thread enters the kernel).
    virtual std::uint32_t threadId() const noexcept = 0;

    // Read at every call: a host may change it.
    // Thread: any. Realtime-safe: no (a system call).
    virtual std::uint32_t effectiveUserId() const noexcept = 0;

    // Whether the program runs with more rights than the user who started it (set-user-id,
    // set-group-id, file capabilities): the environment is not to be trusted then.
    // Thread: any. Realtime-safe: yes.
    virtual bool isSetUserOrGroupId() const noexcept = 0;
};

// The value of an environment variable, read anew at every call; null when it is not set. As with
// every reading of the environment, the host must not change it on another thread meanwhile, and
// the text is good until it does.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT const char* environmentVariable(const char* name) noexcept;

}  // namespace veltra
