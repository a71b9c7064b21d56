// SPDX-License-Identifier: MIT
#include "veltra/platform/uri_syntax.h"

#include <libxml/threads.h>
#include <libxml/uri.h>
#include <libxml/xmlerror.h>

namespace veltra {

namespace {

// The library keeps a copy of its last message for each thread.
void forgetLackOfMemory() noexcept {
    const xmlError* const last = xmlGetLastError();
    if (last != nullptr && last->code == XML_ERR_NO_MEMORY) xmlResetLastError();
}

// What the library sets up once, it sets up while there is memory.
[[maybe_unused]] const bool isSetUp = isUriReference("a");

}  // namespace

bool isUriReference(const char* text) noexcept {
    // Without it the library crashes where it reports that memory is out.
    if (xmlGetGlobalState() == nullptr) return false;
    xmlURI* const uri = xmlParseURI(text);
    forgetLackOfMemory();
    if (uri == nullptr) return false;
    xmlFreeURI(uri);
    return true;
}

}  // namespace veltra
