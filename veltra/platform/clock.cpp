// SPDX-License-Identifier: MIT
#include "veltra/platform/clock.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

Clocks::~Clocks() = default;

template <>
struct OwnImplementation<const Clocks> : OwnFrom<platformClocks> {};
template class Installable<const Clocks>;

}  // namespace veltra
