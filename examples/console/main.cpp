// SPDX-License-Identifier: MIT
// veltra-console: plays audio files and tells what is in them. A small host that shows how the
// framework's pieces are put together; read on in session.cpp, then engine.h and pcm_reader.cpp.
#include "options.h"
#include "output_file.h"
#include "requests.h"
#include "session.h"
#include "window_program.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv) try {
    using namespace veltra::console;
    introduceProgram();
    std::string error;
    const auto options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)}, error);
    if (!options) {
        std::fprintf(stderr, "veltra-console: %s; see veltra-console --help\n", error.c_str());
        return 2;
    }
    if (const auto status = answerRequest(*options)) return *status;
    if (const std::string problem = whyNotWrite(*options); !problem.empty()) {
        std::fprintf(stderr, "veltra-console: %s\n", problem.c_str());
        return 2;
    }
    // The window is a program of its own: who only reads files need not load a toolkit.
    if (wantsWindow(*options)) becomeWindow(argv);
    if (!options->picture.empty()) {
        std::fprintf(stderr, "veltra-console: veltra-console-window is not installed beside it\n");
        return 1;
    }
    if (options->files.empty()) {
        std::fprintf(stderr, "veltra-console: no files are named; see veltra-console --help\n");
        return 2;
    }
    return Session(*options).run();
} catch (const std::exception& failure) {
    std::fprintf(stderr, "veltra-console: %s; giving up\n", failure.what());
    return 1;
}
