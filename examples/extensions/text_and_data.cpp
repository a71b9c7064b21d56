// SPDX-License-Identifier: MIT
// What the extensions do with what users type, and with data that is kept compressed.
#include "veltra/Source/Extensions/QKNSData_Extensions.h"
#include "veltra/Source/Extensions/QKNSDictionary_Extensions.h"
#include "veltra/Source/Extensions/QKNSString_Extension.h"
#include "veltra/Source/Extensions/QKNSString_URLs.h"

#include <cstdio>
#include <string>

using veltra::CharacterSet;
using veltra::CompareOption;
using veltra::PropertyValue;

bool search() {
    const std::string file = "Cafe\u0301 Loop.wav";  // as another system wrote the name
    const bool isFound =
        veltra::containsSubstring(file, "CAF\u00C9", CompareOption::CaseInsensitive);
    const bool isSame = veltra::equals("Take 7", "Take 007", CompareOption::Numeric);
    std::printf("found: %d, the same take: %d\n", isFound ? 1 : 0, isSame ? 1 : 0);
    return isSame;
}

bool clean() {
    const CharacterSet separators = CharacterSet::withCharactersInString("/\\:");
    const std::string name =
        veltra::stringByReplacingCharactersInSet("AC/DC: live", separators, "-");
    const std::string xml = veltra::stringByConvertingToXML("Bass & <Lead>");
    std::printf("%s, %s\n", name.c_str(), xml.c_str());
    return name == "AC-DC- live" && xml == "Bass &amp; &lt;Lead&gt;";
}

bool openWhatWasTyped() {
    const std::string url = veltra::stringByConvertingToRFC2396("example.com/my take.wav");
    std::printf("%s\n", url.c_str());  // http://example.com/my%20take.wav
    const std::string host = veltra::stringByConvertingToPunycode("http://b\u00FCcher.example/");
    std::printf("%s\n", host.c_str());  // http://xn--bcher-kva.example/
    return url == "http://example.com/my%20take.wav";
}

bool keepSmall() {
    const PropertyValue::Data samples(100'000, 0);
    const auto stream = veltra::compressedData(samples);
    if (!stream) return true;                                            // built without zlib
    const auto unpacked = veltra::decompressedData(*stream, 1'000'000);  // from outside: a limit
    std::printf("%zu bytes in %zu\n", samples.size(), stream->size());
    return unpacked == samples;
}

bool readDictionary() {
    const std::string text = R"({"name": "Take 7", "tempo": 120})";
    const auto dictionary =
        veltra::initWithData({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return dictionary && dictionary->at("tempo").asInteger() == 120;
}

int main() {
    return search() && clean() && openWhatWasTyped() && keepSmall() && readDictionary() ? 0 : 1;
}
