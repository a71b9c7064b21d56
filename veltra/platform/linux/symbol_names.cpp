// SPDX-License-Identifier: MIT
#include "veltra/platform/symbol_names.h"

#include "veltra/platform/linux/symbol_tables.h"
#include "veltra/platform/no_cancellation.h"

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <cxxabi.h>
#include <dlfcn.h>

namespace veltra {

void setText(std::array<char, 512>& field, const char* text) noexcept {
    std::snprintf(field.data(), field.size(), "%s", text);
}

void setFunction(SymbolName& symbol, const char* name) noexcept {
    int status = 0;
    const bool isOfC = std::strncmp(name, "_Z", 2) != 0;  // "f" would be taken for a type
    char* const plain = isOfC ? nullptr : abi::__cxa_demangle(name, nullptr, nullptr, &status);
    setText(symbol.function, plain != nullptr ? plain : name);
    std::free(plain);
}

void prepareSymbolNames() noexcept {
    const NoCancellation whileFilesAreRead;
    prepareSymbolTables();
}

SymbolName symbolNameOf(std::uintptr_t address) noexcept {
    const NoCancellation whileFilesAreRead;
    SymbolName name;
    nameFromTables(address, name);
    Dl_info info{};
    if (::dladdr(std::bit_cast<const void*>(address), &info) == 0) return name;
    if (info.dli_fname != nullptr) setText(name.object, info.dli_fname);
    if (name.function[0] == '\0' && info.dli_sname != nullptr) setFunction(name, info.dli_sname);
    return name;
}

}  // namespace veltra
