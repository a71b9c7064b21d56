// SPDX-License-Identifier: MIT
// On a display with a French keyboard, where the configured one is American: a forked child that
// leaves the display and comes back types as the one that it asks for at the moment.
#include "veltra/platform/keyboard_layout.h"

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

bool types(const char16_t* text) {
    constexpr std::uint16_t kUpperLeftLetter = 0x0C;
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // a look is kept for a second
    const auto key = veltra::KeyboardLayout::current().translate(kUpperLeftLetter);
    return key && key->text == text;
}

}  // namespace

int main() {
    const std::string display = std::getenv("DISPLAY");
    if (!types(u"a")) return 1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::unsetenv("DISPLAY");
        if (!types(u"q")) ::_exit(2);
        ::setenv("DISPLAY", display.c_str(), 1);
        ::_exit(types(u"a") ? 0 : 3);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 4;
}
