// SPDX-License-Identifier: MIT
// Which processor this is: for the host's own signal processing, and for the library's kernels.
#include "veltra/processor/dot_api.h"
#include "veltra/processor/kernels.h"

#include <cstdio>

namespace {

// Stands for the host's own inner loops, one set for each variant that the host has.
const char* hostLoop(veltra::CDotAPI::EID variant) {
    switch (variant) {
        case veltra::CDotAPI::eID_SSE3:
            return "written with SSE3";
        case veltra::CDotAPI::eID_AltiVecG4:
        case veltra::CDotAPI::eID_AltiVecG5:
            return "written with AltiVec";
        default:
            return "plain C++";
    }
}

}  // namespace

int main() {
    using veltra::CDotAPI;
    CDotAPI::SetDebugMode(false);  // what users may choose; true offers developers more
    const int entries = static_cast<int>(CDotAPI::MenuEntries());
    for (int position = 0; position < entries; ++position) {
        const bool isSelected = position == CDotAPI::GetSelection();
        std::printf("[%c] %s\n", isSelected ? 'x' : ' ', CDotAPI::MenuText(position));
    }
    std::printf("the host's loops: %s\n", hostLoop(CDotAPI::ID()));

    CDotAPI::SetSelection(entries - 1);  // "optimizations off" is the last entry of every machine
    std::printf("switched off: %s, %d at a time\n", hostLoop(CDotAPI::ID()), CDotAPI::Interleave());
    const bool isOff = CDotAPI::ID() == CDotAPI::eID_Off;

    for (veltra::KernelFamily* family : veltra::KernelFamily::all()) {
        std::printf("%s runs as %s", family->name(), family->inForce());
        family->use("plain");  // to compare, in a test or a bug report
        std::printf(", then as %s\n", family->inForce());
        family->useBest();
    }
    return isOff ? 0 : 1;
}
