// SPDX-License-Identifier: MIT
#include "veltra/platform/system_log.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

SystemLog::~SystemLog() = default;

bool SystemLog::skipRecord() noexcept {
    return false;
}

template <>
struct OwnImplementation<SystemLog> : OwnFrom<platformSystemLog> {};
template class Installable<SystemLog>;

}  // namespace veltra
