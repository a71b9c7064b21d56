// SPDX-License-Identifier: MIT
// Small services for strings. What they do for e-mail addresses, URIs and URLs stands in
// QKNSString_URLs.h, what they do for paths in QKNSString_Paths.h.
//
// Strings are UTF-8. Bytes that are not UTF-8 stay as they are unless a function says otherwise.
// Functions that return a string throw std::bad_alloc when memory is out, and nothing else.
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/Source/Extensions/character_set.h"
#include "veltra/Source/Extensions/string_compare.h"
#include "veltra/export.h"

#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Whether `substring` stands anywhere in `text`; string_compare.h says what the options do. With
// Anchored that means at the start. False when `substring` is empty, and when memory is out.
VELTRA_EXPORT bool containsSubstring(std::string_view text, std::string_view substring,
                                     CompareOptions options = {}) noexcept;

// A lenient reading of a truth value. True for "YES", "TRUE" and "Y" in large or small letters, and
// for a decimal number other than 0: blanks, a sign and digits of any count are read, what follows
// is not looked at. So "-2" and "1 channel" are true; "0", "0x10", "on" and "" are false.
VELTRA_EXPORT bool boolValue(std::string_view text) noexcept;

// The text for the content or an attribute of an XML document: control characters are deleted (see
// CharacterSet::controlCharacterSet(); line feeds and tabs are among them), then & < > ' " become
// "&amp;" "&lt;" "&gt;" "&apos;" "&quot;". What is not UTF-8 becomes U+FFFD, as a document must not
// hold it. Converting twice escapes twice.
VELTRA_EXPORT std::string stringByConvertingToXML(std::string_view text);

// What printf makes of `format` and the arguments, with a decimal point in every locale. Nothing
// when `format` is null, or when printf refuses: a result beyond 2 GiB, or wide text that is not
// ASCII.
[[gnu::format(printf, 1, 2)]] VELTRA_EXPORT std::optional<std::string> stringWithCStringFormat(
    const char* format, ...);

// The string of a NUL-terminated text in Mac Roman. Nothing when `text` is null, and without ICU.
VELTRA_EXPORT std::optional<std::string> stringWithMacRomanString(const char* text);

// The string in Mac Roman, with a question mark for each character that Mac Roman lacks; c_str() is
// NUL-terminated. Nothing when `text` is not UTF-8, and without ICU.
VELTRA_EXPORT std::optional<std::string> macRomanString(std::string_view text);

// The string of a NUL-terminated path as the system has it. File names are bytes, and the string
// holds just these bytes, also when they are not UTF-8: it opens the same file. Nothing for null.
VELTRA_EXPORT std::optional<std::string> stringWithFileSystemRepresentationWithPath(
    const char* path);

// The text without the characters that are in the set.
VELTRA_EXPORT std::string stringByDeletingCharactersInSet(std::string_view text,
                                                          const CharacterSet& set);
// The same under its other name.
VELTRA_EXPORT std::string _stringByDeletingCharactersInSet(std::string_view text,
                                                           const CharacterSet& set);

// The text with `replacement` in place of each single character that is in the set.
VELTRA_EXPORT std::string stringByReplacingCharactersInSet(std::string_view text,
                                                           const CharacterSet& set,
                                                           std::string_view replacement);

}  // namespace veltra
