// SPDX-License-Identifier: MIT
#include "veltra/platform/process.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

Process::~Process() = default;

template <>
struct OwnImplementation<const Process> : OwnFrom<platformProcess> {};
template class Installable<const Process>;

}  // namespace veltra
