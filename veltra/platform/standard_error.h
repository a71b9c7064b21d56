// SPDX-License-Identifier: MIT
// The standard-error stream as a place for whole lines.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace veltra {

class StandardError;
extern template class VELTRA_EXPORT Installable<StandardError>;

class VELTRA_EXPORT StandardError : public Installable<StandardError> {
public:
    // What lines written to the stream go to.
    enum class Kind {
        Unusable,  // closed, or the system tells nothing about it
        RegularFile,
        Pipe,
        Socket,
        Other,  // a terminal or another device
    };

    // What is known about the stream at one moment.
    struct Status {
        Kind kind = Kind::Unusable;  // what it leads to
        std::uint64_t device = 0;    // with `inode`: which file it is; both 0 when not asked for,
        std::uint64_t inode = 0;     // which a regular file allows
    };

    // One line in up to three pieces; empty ones are left out.
    using Pieces = std::array<std::string_view, 3>;

    virtual ~StandardError();

    // What the stream is at this moment.
    // Thread: any. Realtime-safe: no (a system call).
    virtual Status inspect() const noexcept = 0;

    // Whether a service manager started this process or reads this stream; then no person reads it.
    // Thread: any. Realtime-safe: no.
    virtual bool isManaged(const Status& status) const noexcept = 0;

    // Writes the pieces one after another, with no other thread's pieces between them. `status` is
    // what inspect() has just returned. Never waits for a reader, never ends the process by a
    // signal, and leaves no signal pending. What cannot be written at once is lost and never
    // written later; the next line says how many were lost before it. Signal handlers of this
    // thread run after the line, so they may log too. Called while the thread cannot be
    // cancelled. Thread: any but audio. Realtime-safe: no.
    virtual void write(const Status& status, const Pieces& pieces) noexcept = 0;
};

}  // namespace veltra
