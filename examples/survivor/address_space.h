// SPDX-License-Identifier: MIT
// A small machine on a large one.
#pragma once

#include <cstddef>

namespace veltra::survivor {

// Leaves the process `bytes` of address space beyond what it has at this moment. False when the
// system refuses.
bool limitAddressSpace(std::size_t bytes) noexcept;

// Makes every free of a block of audio give its memory back to the system, where it serves any
// other size. The C library otherwise keeps blocks up to 32 MiB once it has seen one freed.
void returnFreedBlocks() noexcept;

}  // namespace veltra::survivor
