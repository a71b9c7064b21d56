// SPDX-License-Identifier: MIT
// What the extensions of strings do for e-mail addresses, URIs and URLs.
//
//   stringByConvertingToRFC2396("example.com/my take.wav")
//                                           // "http://example.com/my%20take.wav"
//
// Strings are UTF-8. Functions that return a string throw std::bad_alloc when memory is out, and
// nothing else; each returns the empty string for the empty string.
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <string>
#include <string_view>

namespace veltra {

// Whether the whole text looks like an e-mail address: letters a to z, digits, dots, underscores
// and hyphens, one "@", and a domain of letters, digits, dots and hyphens with a dot before its
// last two to four characters. Letters beyond ASCII and longer last labels, such as ".museum", are
// refused. Deliberately lenient about dots: "a@b..cc" is accepted.
//
// A hostile text of any length is answered fast, with false. False also without ICU, and when
// memory is out.
VELTRA_EXPORT bool stringLooksLikeValidEmailAddress(std::string_view text) noexcept;

// Whether libxml2 reads the text as a URI reference: "http://example.com/a%20b", but also "a/b",
// "#part" and "a:b:c". Blanks, control characters, what is not ASCII, any of "<>\^{|}` and a stray
// percent sign are refused. False for the empty text, without libxml2, and when memory is out.
VELTRA_EXPORT bool stringLooksLikeValidURI(std::string_view text) noexcept;

// The URL with its host name in ASCII: "http://b\u00FCcher.example/" becomes
// "http://xn--bcher-kva.example/". The host stands behind the first "://" and ends before the first
// of / ? # behind that; user, password and port are no part of it, and neither is a number in
// brackets. By IDNA of 2003: letters become small, the German sharp s becomes "ss".
//
// Returns the text as it is when it has no host, when the host cannot be converted (an empty label,
// a label of more than 63 characters, not UTF-8, characters that were not in Unicode 3.2), without
// ICU, and when ICU lacks memory.
VELTRA_EXPORT std::string stringByConvertingToPunycode(std::string_view text);

// The text as a URL with a scheme. An e-mail address gets "mailto:" in front; what has no colon
// gets "http://". Each further "://" behind the first is deleted, in one pass. Text that begins
// with "mailto:" and goes on stays as it is.
VELTRA_EXPORT std::string stringByPrependingURLScheme(std::string_view text);

// The text as a URL by RFC 2396: first with a scheme, as stringByPrependingURLScheme(), then
// escaped. ASCII letters and digits, - _ . ! ~ * ' ( ) and ; / ? : @ & = + $ , # stay as they are,
// and so does a percent sign with two hexadecimal digits behind it. Each other byte becomes a
// percent sign and two digits, in capitals, also where the text is not UTF-8.
//
// Escaping again changes nothing. RFC 2396 knows no brackets, so they are escaped and a URL with a
// numeric IPv6 host does not survive.
VELTRA_EXPORT std::string stringByConvertingToRFC2396(std::string_view text);

}  // namespace veltra
