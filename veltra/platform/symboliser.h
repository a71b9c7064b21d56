// SPDX-License-Identifier: MIT
// Names for the addresses of a stack, looked up by another program: it may take its time and its
// memory, and reads debug information that this process would have to keep for good.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstdint>
#include <span>
#include <string>

namespace veltra {

class Symboliser;
extern template class VELTRA_EXPORT Installable<Symboliser>;

// On Linux: eu-addr2line of the package elfutils, as found in PATH. It has ten seconds, and is
// never asked to fetch anything from the network; a process with more rights than its user starts
// nothing.
class VELTRA_EXPORT Symboliser : public Installable<Symboliser> {
public:
    virtual ~Symboliser();

    // What the code of this process at `addresses` is called: a line or more for each address,
    // made for people. Empty when nobody can say, whatever the reason.
    // Thread: any but audio: it waits. Realtime-safe: no.
    virtual std::string symbolise(std::span<const std::uintptr_t> addresses) noexcept = 0;
};

}  // namespace veltra
