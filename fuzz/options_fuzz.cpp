// SPDX-License-Identifier: MIT
// Any arguments for the console, a NUL between them: it either knows what is wanted or says why
// not.
#include "examples/console/options.h"
#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace veltra::console;
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::vector<const char*> arguments;
    for (std::size_t start = 0; start <= size && arguments.size() < 64;
         start += std::char_traits<char>::length(&input[start]) + 1) {
        arguments.push_back(&input[start]);
    }
    std::string error;
    const auto options = parseOptions(arguments, error);
    require(options.has_value() == error.empty(), "either options or an error");
    if (!options) return 0;
    require(options->scale >= 1 && options->scale <= 4, "scales are in their range");
    require(options->width >= 0 && options->height >= 0, "sizes are in their range");
    require(options->request != Request::Files || !options->files.empty() ||
                (!options->headless && options->bounce.empty() && options->picture.empty()),
            "what reads files has some");
    return 0;
}
