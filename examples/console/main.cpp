// veltra-console: plays audio files and tells what is in them. A small host that shows how the
// framework's pieces are put together; read on in session.cpp, then engine.h and pcm_reader.cpp.
#include "options.h"
#include "session.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv) try {
    using namespace veltra::console;
    std::string error;
    const auto options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)}, error);
    if (!options) {
        std::fprintf(stderr, "veltra-console: %s; see veltra-console --help\n", error.c_str());
        return 2;
    }
    if (options->help) return std::fputs(kHelpText, stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    return Session(*options).run();
} catch (const std::exception& failure) {
    std::fprintf(stderr, "veltra-console: %s; giving up\n", failure.what());
    return 1;
}
