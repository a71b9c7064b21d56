// SPDX-License-Identifier: MIT
// Walks all that is in a folder, without following links.
#pragma once

#include <functional>
#include <string>

namespace veltra::detail {

// Calls `visit` with each item below `folder` and whether it is a folder, in no order; what is in a
// folder follows only where `visit` answers true. Folders below that may not be read count as
// empty. Returns false when `folder` itself cannot be read. Raises std::bad_alloc.
bool walkFolder(const std::string& folder,
                const std::function<bool(const std::string& path, bool isFolder)>& visit);

}  // namespace veltra::detail
