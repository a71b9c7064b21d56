// SPDX-License-Identifier: MIT
// What headers of functions with C linkage need: the export mark and their frame.
//
// Between VELTRA_C_BEGIN and VELTRA_C_END such a header is plain C11. C++ (any standard since
// C++11) sees the same functions in namespace veltra, with C linkage and noexcept, so that one
// symbol serves every language.
#pragma once

#if defined(__GNUC__)
#define VELTRA_EXPORT __attribute__((visibility("default")))
#define VELTRA_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define VELTRA_EXPORT
#define VELTRA_PRINTF(text, first)
#endif

#ifdef __cplusplus
#define VELTRA_C_BEGIN \
    namespace veltra { \
    extern "C" {
#define VELTRA_C_END \
    }                \
    }
#define VELTRA_NOEXCEPT noexcept
#else
#define VELTRA_C_BEGIN
#define VELTRA_C_END
#define VELTRA_NOEXCEPT
#endif
