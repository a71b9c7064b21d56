// SPDX-License-Identifier: MIT
// The part of the family `audio` that sorts transients.
#pragma once

#include "benchmarks/ratios.h"

#include <vector>

// Registers the benchmarks; answers how they are judged.
std::vector<Ratio> registerTransientBenchmarks();
