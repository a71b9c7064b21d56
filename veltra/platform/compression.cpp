// SPDX-License-Identifier: MIT
#include "veltra/platform/compression.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

Inflater::~Inflater() = default;
Compression::~Compression() = default;

template <>
struct OwnImplementation<const Compression> : OwnFrom<platformCompression> {};
template class Installable<const Compression>;

}  // namespace veltra
