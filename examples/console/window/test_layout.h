// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace veltra::console::testing {

// As long as this lives, the keys are those of an American keyboard with Y and Z in German places.
std::shared_ptr<void> germanKeys();

}  // namespace veltra::console::testing
