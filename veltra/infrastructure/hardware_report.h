// SPDX-License-Identifier: MIT
// The machine in one text, for bug reports.
#pragma once

#include "veltra/export.h"

#include <string>

namespace veltra {

// Lines "NAME: TEXT", each with a line end: application and system with their versions; processor
// with its class, caches and the kernels in force; memory, and the limits of the control groups and
// of the process told apart from what the machine has; what the process may do in real time, timers
// and their resolution; how the processor is clocked, preemption, swappiness, sound cards and
// optical drives. What the system does not say has no line. Below them stand the lines of
// report_sections.h, a host's own among these.
//
// The text has no serial numbers and no names of users, hosts or files, but for what a host's
// own sections write. It is made to be sent: English in every locale. Throws std::bad_alloc.
// Thread: any that may wait for files. Realtime-safe: no.
VELTRA_EXPORT std::string hardwareReport();

}  // namespace veltra
