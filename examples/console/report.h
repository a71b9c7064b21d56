// SPDX-License-Identifier: MIT
// The report: a block of text for each file. Its form is described in the program's --help.
#pragma once

#include "engine.h"

#include <optional>
#include <span>
#include <string>

namespace veltra::console {

struct ReportEntry {
    std::string path;
    std::string error;                  // the file could not be read
    std::optional<StripResult> result;  // else what is in it
    std::uint64_t deviceUnderruns = 0;  // of the whole run
};

std::string makeReport(std::span<const ReportEntry> entries);

// Writes `text` to standard output ("-") or to a file, which is replaced as a whole: whoever reads
// it sees the old report or the new one. A file that is no report of this program stays as it is.
// Returns an empty text, or why that was not possible and what to do.
std::string writeReport(const std::string& text, const std::string& destination);

}  // namespace veltra::console
