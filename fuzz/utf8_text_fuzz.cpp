// SPDX-License-Identifier: MIT
// Any bytes as a text in memory of just its size, at any place within a cache line; some of them
// over and over, so that copies go in several pieces.
#include "veltra/processor/testing/utf8_laws.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t offset = input.empty() ? 0 : data[0] & 63U;
    input = input.substr(0, input.find('\0'));
    std::string text(input);
    while (!input.empty() && data[0] >= 0xF8 && text.size() < 40'000)
        text += input;
    std::vector<char> memory(offset + text.size() + 1);
    text.copy(memory.data() + offset, text.size());
    const std::string broken = veltra::brokenLaw({memory.data() + offset, text.size()});
    if (broken.empty()) return 0;
    std::fprintf(stderr, "broken: %s\n", broken.c_str());
    std::abort();
}
