// SPDX-License-Identifier: MIT
// survivor: a sampler that runs out of memory again and again and loses nothing. A small host that
// shows how the framework's memory services work together; read on in host.cpp.
#include "host.h"
#include "options.h"
#include "veltra/platform/preferences.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv) try {
    using namespace veltra::survivor;
    const auto options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)});
    if (!options) {
        std::fputs(kHelpText, stderr);
        return 2;
    }
    veltra::Preferences::setApplicationName("veltra-survivor");
    return Host(*options).run() ? 0 : 1;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "survivor: %s\n", failure.what());
    return 1;
}
