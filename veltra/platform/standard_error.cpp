// SPDX-License-Identifier: MIT
#include "veltra/platform/standard_error.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

StandardError::~StandardError() = default;

template <>
struct OwnImplementation<StandardError> : OwnFrom<platformStandardError> {};
template class Installable<StandardError>;

}  // namespace veltra
