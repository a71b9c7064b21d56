// SPDX-License-Identifier: MIT
// Two reports of what a piece of code has left behind: one for people, one of fixed form for tools.
// And how a test states that nothing is left.
#include "veltra/memory/leak_guard.h"
#include "veltra/memory/leak_report.h"
#include "veltra/platform/preferences.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

struct Voice {
    float* samples;  // nobody frees them
};

// Through a pointer that the compiler does not know, so that it leaves no allocation out.
void* (*volatile allocate)(std::size_t) = std::malloc;

[[gnu::noinline]] Voice loadVoice(std::size_t frames) {
    return {static_cast<float*>(allocate(frames * sizeof(float)))};
}

[[gnu::noinline]] void loadSong() {
    const veltra::QKLeakGuard guard;  // until loadSong() returns
    const volatile int voices = 3;    // one place in the code that allocates, not three
    for (int voice = 0; voice < voices; ++voice)
        loadVoice(100);
    const std::unique_ptr<char[]> name(new char[40]);  // freed: not reported
    std::memcpy(name.get(), "song", sizeof "song");
}

void keepText(void* context, const veltra::QKLeak* leak) {
    *static_cast<std::string*>(context) += leak->text;
}

}  // namespace

int main() {
    veltra::Preferences::setApplicationName("veltra-example-leaks");
    veltra::Preferences::current().setValue("LeakGuardEnabled", true);

    std::puts("For people:");
    loadSong();
    const long bytes = veltra::QKLeakGuardPrintLeaks();
    if (bytes < 0) {
        std::puts("the guard sees no allocations of this process");
        return 0;
    }

    std::puts("\nIn fixed form:");
    loadSong();
    veltra::QKLeakGuard::ResetHistory(true);

    loadSong();
    std::string leaks;
    const bool isFound = veltra::QKLeakGuardVisitLeaks(keepText, &leaks) == 1200;
    const bool isNothingLeft = veltra::QKLeakGuardVisitLeaks(nullptr, nullptr) == 0;
    return bytes == 1200 && isFound && isNothingLeft && leaks.find("1200 bytes in 3 blocks") == 0
               ? 0
               : 1;
}
