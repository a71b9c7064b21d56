// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_URLs.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/utf16_text.h"
#include "veltra/platform/text_services.h"
#include "veltra/platform/uri_syntax.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr std::string_view kMail = "mailto:";
constexpr std::string_view kAuthority = "://";

constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

constexpr bool isHexDigit(char c) noexcept {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool isKeptInUrls(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) ||
           std::string_view("-_.!~*'();/?:@&=+$,#").find(c) != std::string_view::npos;
}

// The host of a URL, which may be empty: a part of `url`.
std::string_view hostOf(std::string_view url) noexcept {
    const std::size_t mark = url.find_first_of(":/?#");
    if (mark == std::string_view::npos || url.substr(mark, kAuthority.size()) != kAuthority)
        return {};
    std::string_view host = url.substr(mark + kAuthority.size());
    host = host.substr(0, host.find_first_of("/?#"));
    host.remove_prefix(host.rfind('@') + 1);  // from the start when there is none
    if (host.starts_with('[')) return {};
    const std::size_t port = host.find_last_not_of("0123456789");
    if (port != std::string_view::npos && host[port] == ':') host = host.substr(0, port);
    return host;
}

}  // namespace

bool stringLooksLikeValidEmailAddress(std::string_view text) noexcept {
    return unlessOutOfMemory(false, [text] {
        const std::optional<std::u16string> units = utf16From(text);
        return units && TextServices::current().matchesEmailPattern(*units).value_or(false);
    });
}

bool stringLooksLikeValidURI(std::string_view text) noexcept {
    if (text.empty() || text.find('\0') != std::string_view::npos) return false;
    return unlessOutOfMemory(false, [text] { return isUriReference(std::string(text).c_str()); });
}

std::string stringByConvertingToPunycode(std::string_view text) {
    const std::string_view host = hostOf(text);
    if (host.empty()) return std::string(text);
    const std::optional<std::u16string> units = utf16From(host);
    const std::optional<std::u16string> ascii =
        units ? TextServices::current().asciiHostName(*units) : std::nullopt;
    const std::optional<std::string> converted = ascii ? utf8From(*ascii) : std::nullopt;
    if (!converted) return std::string(text);
    const auto before = static_cast<std::size_t>(host.data() - text.data());
    std::string result(text.substr(0, before));
    result += *converted;
    result += text.substr(before + host.size());
    return result;
}

std::string stringByPrependingURLScheme(std::string_view text) {
    if (text.empty() || (text.starts_with(kMail) && text.size() > kMail.size()))
        return std::string(text);
    if (stringLooksLikeValidEmailAddress(text)) return std::string(kMail).append(text);

    std::string url;
    if (text.find(':') == std::string_view::npos) url = "http://";
    url += text;
    const std::size_t first = url.find(kAuthority);
    if (first == std::string::npos) return url;
    std::string result(url, 0, first + kAuthority.size());
    for (std::string_view rest = std::string_view(url).substr(result.size()); !rest.empty();) {
        const std::string_view part = rest.substr(0, rest.find(kAuthority));
        result += part;
        rest.remove_prefix(std::min(rest.size(), part.size() + kAuthority.size()));
    }
    return result;
}

std::string stringByConvertingToRFC2396(std::string_view text) {
    const std::string url = stringByPrependingURLScheme(text);
    std::string result;
    result.reserve(url.size());
    for (std::size_t index = 0; index < url.size(); ++index) {
        const char c = url[index];
        const bool isEscape = c == '%' && index + 2 < url.size() && isHexDigit(url[index + 1]) &&
                              isHexDigit(url[index + 2]);
        if (isEscape || isKeptInUrls(c)) {
            result += c;
            continue;
        }
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
    return result;
}

}  // namespace veltra
