// SPDX-License-Identifier: MIT
// Whether a folder is a package: isFilePackageAtPath(), for those who must not take "unknown" for
// "no".
#pragma once

#include "veltra/platform/file_system.h"

#include <string>

namespace veltra::detail {

// `name` in `folder` is a folder whose whole path is `path`. Raises std::bad_alloc.
std::error_code judgePackage(FileSystem& files, FileSystem::Handle folder, const std::string& name,
                             const std::string& path, bool& isPackage);

}  // namespace veltra::detail
