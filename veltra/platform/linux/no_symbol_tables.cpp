// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/symbol_tables.h"

namespace veltra {

void prepareSymbolTables() noexcept {}

void nameFromTables(std::uintptr_t /*address*/, SymbolName& /*name*/) noexcept {}

}  // namespace veltra
