// SPDX-License-Identifier: MIT
// Linked without symbols: prints its backtrace.
#include "veltra/diagnostics/backtracing_exception.h"

#include <cstdio>

int main() {
    std::fputs(veltra::VLBacktracingException::backtraceSkippingFrames(0).c_str(), stdout);
    return 0;
}
