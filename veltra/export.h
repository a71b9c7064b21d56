// SPDX-License-Identifier: MIT
// What every header of C++ needs. Headers of functions with C linkage include c_linkage.h instead,
// which asks for less.
#pragma once

#if defined(__cplusplus) && __cplusplus < 202002L
#error "Veltra needs C++20: compile with -std=c++20 or newer"
#endif

#include "veltra/c_linkage.h"
