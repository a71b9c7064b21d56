// SPDX-License-Identifier: MIT
// A module that a test loads late, with a function that no symbol table of the linker's names.
#include <cstdint>

namespace {

[[gnu::noinline]] void hidden() {
    asm volatile("");
}

}  // namespace

extern "C" [[gnu::visibility("default")]] std::uintptr_t hiddenAddress() {
    return reinterpret_cast<std::uintptr_t>(&hidden);
}
