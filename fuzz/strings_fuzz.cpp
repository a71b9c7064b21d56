// SPDX-License-Identifier: MIT
// A byte of options, a text and what is sought in it, with a NUL between the two.
#include "fuzz/require.h"
#include "veltra/Source/Extensions/QKNSString_Extension.h"
#include "veltra/Source/Extensions/QKNSString_URLs.h"
#include "veltra/Source/Extensions/string_compare.h"
#include "veltra/base/well_formed_utf8.h"

#include <algorithm>

using namespace veltra;

namespace {

void search(std::string_view text, std::string_view sought, CompareOptions options) {
    require(equals(text, text, options), "a text equals itself");
    require(equals(text, sought, options) == equals(sought, text, options),
            "neither is the other's measure");
    const auto found = find(text, sought, options);
    require(containsSubstring(text, sought, options) == found.has_value(), "both find it");
    if (!found) {
        require(sought.empty() || text.find(sought) == text.npos ||
                    !options.contains(CompareOption::Literal) ||
                    options.contains(CompareOption::Anchored) || !isWellFormedUtf8(text) ||
                    !isWellFormedUtf8(sought),
                "the very text is found");
        return;
    }
    require(found->position <= text.size() && found->length <= text.size() - found->position,
            "the place is in the text");
    require(equals(text.substr(found->position, found->length), sought, options),
            "what is found equals what was sought");
}

void convert(const std::string& text) {
    const std::string xml = stringByConvertingToXML(text);
    require(isWellFormedUtf8(xml) && xml.find_first_of("<>\"") == xml.npos, "XML has no marks");
    const std::string url = stringByConvertingToRFC2396(text);
    require(std::ranges::all_of(url, [](char byte) { return byte > ' ' && byte < 0x7F; }),
            "a URL is ASCII without blanks");
    // What is left beside a "://" that was taken out may be another one.
    const bool hasOneScheme = url.find("://") == url.rfind("://");
    require(!hasOneScheme || stringByConvertingToRFC2396(url) == url,
            "escaping again changes nothing");
    stringLooksLikeValidEmailAddress(text);
    stringLooksLikeValidURI(text);
    boolValue(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string input(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::string_view all(input);
    const std::size_t end = std::min(all.find('\0'), all.size());
    const std::string_view sought = all.substr(std::min(end + 1, all.size()));
    search(all.substr(0, end), sought, CompareOptions::fromBits(data[0]));
    convert(input.substr(0, end));
    return 0;
}
