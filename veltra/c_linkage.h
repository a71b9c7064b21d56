// SPDX-License-Identifier: MIT
// What headers of functions with C linkage need: the export mark and their frame.
//
// Between VELTRA_C_BEGIN and VELTRA_C_END such a header is plain C11. C++ (since C++17) sees the
// same functions in namespace veltra, with C linkage and noexcept, so that one symbol serves every
// language.
#pragma once

#if defined(__GNUC__)
// Marks a function, variable or class that the library exports. Empty where the compiler has no
// such mark.
#define VELTRA_EXPORT __attribute__((visibility("default")))

// Marks a function that formats like printf(), so that the compiler checks its calls: which of its
// parameters, counted from 1, is the format, and which the first value that it formats. Empty where
// the compiler has no such mark.
#define VELTRA_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define VELTRA_EXPORT
#define VELTRA_PRINTF(text, first)
#endif

#ifdef __cplusplus
// Stand before and behind the declarations: in C++ they open and close the namespace and the block
// of functions with C linkage, in C they are empty.
#define VELTRA_C_BEGIN \
    namespace veltra { \
    extern "C" {
#define VELTRA_C_END \
    }                \
    }

// Ends the declaration of a function that throws nothing: `noexcept` in C++, nothing in C.
#define VELTRA_NOEXCEPT noexcept
#else
#define VELTRA_C_BEGIN
#define VELTRA_C_END
#define VELTRA_NOEXCEPT
#endif
