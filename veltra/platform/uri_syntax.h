// SPDX-License-Identifier: MIT
// The syntax of URIs, which a library knows.
#pragma once

namespace veltra {

// Whether a NUL-terminated text is a URI or a relative reference. False without the library, and
// when memory is out.
// Thread: any. Realtime-safe: no.
bool isUriReference(const char* text) noexcept;

}  // namespace veltra
