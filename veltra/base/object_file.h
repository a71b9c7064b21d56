// SPDX-License-Identifier: MIT
// What belongs to one format of object files, each mark under a name that says what it is for.
#pragma once

#if defined(__ELF__)

// For thread-local words whose first use on a thread must not allocate: the loader makes room for
// them when it starts the thread, also in a library that is loaded late. That room is scarce: a few
// words for each file.
#define VELTRA_NEVER_ALLOCATED [[gnu::tls_model("initial-exec")]]

// Puts a function into the section `name`.
#define VELTRA_IN_SECTION(name) [[gnu::section(#name)]]

// Declares where the section `name` begins and ends, in whatever library or program the code
// becomes part of. Both are null there when no function was put into it. Outside of any namespace.
#define VELTRA_DECLARE_SECTION(name)                                                    \
    extern "C" {                                                                        \
    [[gnu::weak, gnu::visibility("hidden")]] extern const char VELTRA_BEGIN_OF(name)[]; \
    [[gnu::weak, gnu::visibility("hidden")]] extern const char VELTRA_END_OF(name)[];   \
    }
#define VELTRA_BEGIN_OF(name) __start_##name
#define VELTRA_END_OF(name) __stop_##name

#else
#error "This format of object files has no marks yet. They belong into this header."
#endif
