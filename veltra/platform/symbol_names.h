// SPDX-License-Identifier: MIT
// What the code at an address is called, and where it was written: for reports that people read.
//
// Names come from the debug information of the program and its libraries, else from their symbol
// tables, else from what they export. Only the first name of a process is slow (a tenth of a second
// where much debug information is installed).
#pragma once

#include <array>
#include <cstdint>

namespace veltra {

// Texts end with a NUL, are empty where nobody knows, and are cut where they are longer.
struct SymbolName {
    std::array<char, 512> function{};  // as it is written in C++
    std::array<char, 512> file{};      // of the source
    std::array<char, 512> object{};    // the program or library that the address lies in
    int line = 0;                      // in `file`; 0: unknown
};

// Reads the debug information now. A service that will report calls it when it is switched on: a
// forked child reads none of its own, because another thread may have held the dynamic linker's
// lock, and has only the names that were prepared before the fork.
// Thread: any. Realtime-safe: no.
void prepareSymbolNames() noexcept;

// The name of the function that holds `address`. For a return address ask for the byte before it:
// the address itself may belong to the next line or function. Allocates nothing but what turns a
// name of the linker's into one of C++; without memory for that the linker's name is the answer.
// Thread: any. Realtime-safe: no.
SymbolName symbolNameOf(std::uintptr_t address) noexcept;

}  // namespace veltra
