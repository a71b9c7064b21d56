// SPDX-License-Identifier: MIT
#include "veltra/platform/file_system.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

template <>
struct OwnImplementation<FileSystem> : OwnFrom<platformFileSystem> {};
template class Installable<FileSystem>;

FileSystem::~FileSystem() = default;

}  // namespace veltra
