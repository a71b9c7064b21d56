// SPDX-License-Identifier: MIT
// Starting another program and getting rid of it, without traces in the host and without anything
// of the host's in the program.
#pragma once

#include <sys/types.h>

namespace veltra {

enum class ChildInput { Nothing, SameAsOutput };

// Starts `program`, a path or a name to be looked for in PATH, with `descriptor` as its standard
// output, no standard error and no other descriptor of ours, no signal handling of the host's, and
// no rights that the user did not have. The lists end with a null. Returns the process id, or -1.
pid_t startProgram(const char* program, char* const* arguments, char* const* environment,
                   int descriptor, ChildInput input) noexcept;

// Kills what is left of the program and takes its status. One that is no longer ours, because the
// host ignores SIGCHLD or reaps everything itself, is not killed: its number may be another's now.
void endProgram(pid_t child) noexcept;

}  // namespace veltra
