// Any bytes as a preferences file: refused, or read as something that is written and read again
// unchanged. Built by hand, with clang++ -std=c++20 -fsanitize=fuzzer,address,undefined -I. and
// veltra/platform/property_value.cpp,
// veltra/platform/detail/{base64,json_text,well_formed_utf8}.cpp.
#include "veltra/platform/detail/json_text.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto dictionary = veltra::dictionaryFromJson(text);
    if (!dictionary) return 0;
    const std::string written = veltra::jsonFromDictionary(*dictionary);
    const auto again = veltra::dictionaryFromJson(written);
    if (!again || *again != *dictionary) std::abort();
    if (veltra::jsonFromDictionary(*again) != written) std::abort();
    return 0;
}
