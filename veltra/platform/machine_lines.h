// SPDX-License-Identifier: MIT
// What a report about the machine tells that only the system's own files say.
#pragma once

#include <string>
#include <vector>

namespace veltra {

struct MachineLine {
    const char* name;  // a few words in small letters
    std::string text;  // one line, never empty
};

// The machine's processor and caches, what decides how punctually its threads run, and its sound
// cards, as far as they are known. Nothing of it tells whose machine it is: no serial numbers, no
// names of users or hosts. Throws std::bad_alloc.
// Thread: any. Realtime-safe: no.
std::vector<MachineLine> platformMachineLines();

}  // namespace veltra
