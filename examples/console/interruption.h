// SPDX-License-Identifier: MIT
// Ctrl-C and the system's polite request to end.
#pragma once

namespace veltra::console {

// From now on the first SIGINT or SIGTERM only makes isInterrupted() true; a second one ends the
// process as usual. Thread: main.
void listenForInterruption();
bool isInterrupted() noexcept;

}  // namespace veltra::console
