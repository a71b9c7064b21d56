// SPDX-License-Identifier: MIT
#include "veltra/platform/uri_syntax.h"

#include <libxml/uri.h>

namespace veltra {

bool isUriReference(const char* text) noexcept {
    const xmlURIPtr uri = xmlParseURI(text);
    if (uri == nullptr) return false;
    xmlFreeURI(uri);
    return true;
}

}  // namespace veltra
