// SPDX-License-Identifier: MIT
#include "veltra/platform/symboliser.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

Symboliser::~Symboliser() = default;

template <>
struct OwnImplementation<Symboliser> : OwnFrom<platformSymboliser> {};
template class Installable<Symboliser>;

}  // namespace veltra
