// SPDX-License-Identifier: MIT
#include "veltra/platform/local_time.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

LocalTime::~LocalTime() = default;

template <>
struct OwnImplementation<const LocalTime> : OwnFrom<platformLocalTime> {};
template class Installable<const LocalTime>;

}  // namespace veltra
