// SPDX-License-Identifier: MIT
// Names from debug information and symbol tables; one of two files defines it.
//   backtrace_tables.cpp      reads them by libbacktrace
//   ../none/symbol_tables.cpp knows nothing
#pragma once

#include "veltra/platform/symbol_names.h"

namespace veltra {

void prepareSymbolTables() noexcept;

// Fills in what is known of function, file and line.
void nameFromTables(std::uintptr_t address, SymbolName& name) noexcept;

// Puts the linker's `name` into `function` as it is written in C++.
void setFunction(SymbolName& symbol, const char* name) noexcept;

// `text` as far as there is room for it.
void setText(std::array<char, 512>& field, const char* text) noexcept;

}  // namespace veltra
