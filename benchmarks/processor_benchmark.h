// SPDX-License-Identifier: MIT
// The parts of the family `processor`. Each registers its benchmarks, adds its ratios, and answers
// whether the libraries it compares agree on the results.
#pragma once

#include "benchmarks/ratios.h"

bool addChecksums(RatioList& list);
bool addConverters(RatioList& list);
bool addSwaps(RatioList& list);

// Adds no result of its own to compare.
void addNarrow(RatioList& list);
