// SPDX-License-Identifier: MIT
#include "veltra/platform/exception_type.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <typeinfo>

#include <cxxabi.h>

namespace veltra {

std::array<char, 256> currentExceptionType() noexcept {
    std::array<char, 256> text{};
    // Asked for an exception of another language, the runtime returns no type but a wild pointer.
    if (std::current_exception() == nullptr) return text;
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr) return text;
    int status = 0;
    char* const plain = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    std::snprintf(text.data(), text.size(), "%s", plain != nullptr ? plain : type->name());
    std::free(plain);
    return text;
}

}  // namespace veltra
