// SPDX-License-Identifier: MIT
// The environment as a test wants it.
#pragma once

#include <cstdlib>

namespace veltra {

// Null takes the variable away. The test has no second thread at that moment.
inline void setEnvironment(const char* name, const char* value) {
    if (value != nullptr)
        ::setenv(name, value, 1);  // NOLINT(concurrency-mt-unsafe): one thread
    else
        ::unsetenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
}

}  // namespace veltra
