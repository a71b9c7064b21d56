// SPDX-License-Identifier: MIT
#include "veltra/platform/c_locale.h"

#include <locale.h>

namespace veltra {

CLocale::CLocale() noexcept {
    // The C library has this one built in: nothing is allocated.
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    m_before = ::uselocale(plain);
}

CLocale::~CLocale() {
    ::uselocale(static_cast<locale_t>(m_before));
}

}  // namespace veltra
