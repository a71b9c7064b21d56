// SPDX-License-Identifier: MIT
// Where output may go: a file that this program has not made is never overwritten.
#pragma once

#include "options.h"

#include <span>
#include <string>

namespace veltra::console {

enum class OutputKind { Report, Picture, Bounce };

// An empty text when `path` may be written: it does not exist, holds nothing, is an earlier output
// of the same kind, or is no regular file (a device, a pipe), which a mix needs. Else why not
// and what to do.
// `inputs` are the recordings.
std::string whyNotWrite(const std::string& path, OutputKind kind,
                        std::span<const std::string> inputs = {});

// The same for what the command line asks for.
std::string whyNotWrite(const Options& options);

}  // namespace veltra::console
