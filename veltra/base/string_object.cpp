// SPDX-License-Identifier: MIT
#include "veltra/base/string_object.h"

#include "veltra/base/string_object_text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace veltra {

namespace {

constexpr char32_t kIllFormed = 0xFFFFFFFF;

bool isHighSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit < 0xE000;
}

// Takes one character off the front; kIllFormed when there is none.
char32_t takeCharacter(std::string_view& utf8) noexcept {
    const auto byteAt = [&utf8](std::size_t index) {
        return static_cast<char32_t>(static_cast<unsigned char>(utf8[index]));
    };
    const char32_t lead = byteAt(0);
    if (lead < 0x80) {
        utf8.remove_prefix(1);
        return lead;
    }
    if (lead < 0xC2 || lead > 0xF4) return kIllFormed;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (utf8.size() < length) return kIllFormed;
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0U) != 0x80) return kIllFormed;
        character = (character << 6U) | (byteAt(index) & 0x3FU);
    }
    const bool isOverLong =
        (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool isSurrogate = isHighSurrogate(character) || isLowSurrogate(character);
    if (isOverLong || isSurrogate || character > 0x10FFFF) return kIllFormed;
    utf8.remove_prefix(length);
    return character;
}

char32_t takeCharacter(std::u16string_view& utf16) noexcept {
    const char32_t unit = utf16[0];
    if (isLowSurrogate(unit)) return kIllFormed;
    if (!isHighSurrogate(unit)) {
        utf16.remove_prefix(1);
        return unit;
    }
    if (utf16.size() < 2 || !isLowSurrogate(utf16[1])) return kIllFormed;
    const char32_t character = 0x10000 + ((unit - 0xD800) << 10U) + (utf16[1] - 0xDC00U);
    utf16.remove_prefix(2);
    return character;
}

std::size_t utf16Length(char32_t character) noexcept {
    return character < 0x10000 ? 1 : 2;
}

std::size_t utf8Length(char32_t character) noexcept {
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

void putUtf16(char16_t* destination, char32_t character) noexcept {
    if (character < 0x10000) {
        destination[0] = static_cast<char16_t>(character);
        return;
    }
    destination[0] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10U));
    destination[1] = static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FFU));
}

void putUtf8(char* destination, char32_t character) noexcept {
    const std::size_t length = utf8Length(character);
    for (std::size_t index = length - 1; index > 0; --index) {
        destination[index] = static_cast<char>(0x80U | (character & 0x3FU));
        character >>= 6U;
    }
    const char32_t mark = length == 1 ? 0 : 0xF0U << (4 - length);
    destination[0] = static_cast<char>(static_cast<unsigned char>(mark | character));
}

// The length in UTF-16 units, or nothing for ill-formed text.
template <typename View>
std::optional<std::size_t> measure(View text) noexcept {
    std::size_t length = 0;
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        if (character == kIllFormed) return std::nullopt;
        length += utf16Length(character);
    }
    return length;
}

template <typename View>
const VLString* create(View text) noexcept {
    const std::optional<std::size_t> length = measure(text);
    if (!length || *length > (SIZE_MAX - sizeof(VLString)) / sizeof(char16_t)) return nullptr;
    void* memory = std::malloc(sizeof(VLString) + *length * sizeof(char16_t));
    if (memory == nullptr) return nullptr;
    auto* units = reinterpret_cast<char16_t*>(static_cast<char*>(memory) + sizeof(VLString));
    for (char16_t* next = units; !text.empty();) {
        const char32_t character = takeCharacter(text);
        putUtf16(next, character);
        next += utf16Length(character);
    }
    return new (memory) VLString{{1}, {units, *length}};
}

}  // namespace

const VLString* createString(std::string_view utf8) noexcept {
    return create(utf8);
}
const VLString* createString(std::u16string_view utf16) noexcept {
    return create(utf16);
}

const VLString* retainString(const VLString* string) noexcept {
    // Relaxed: whoever adds a reference already holds one.
    if (string != nullptr && string->references.load(std::memory_order_relaxed) != 0)
        string->references.fetch_add(1, std::memory_order_relaxed);
    return string;
}

void releaseString(const VLString* string) noexcept {
    if (string == nullptr || string->references.load(std::memory_order_relaxed) == 0) return;
    // With every other release: what other holders did comes before the free.
    if (string->references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    string->~VLString();
    std::free(const_cast<VLString*>(string));
}

std::size_t utf8LengthOf(const VLString* string) noexcept {
    std::size_t length = 0;
    for (std::u16string_view rest = string != nullptr ? string->units : u""; !rest.empty();)
        length += utf8Length(takeCharacter(rest));
    return length;
}

std::size_t copyUtf8(const VLString* string, char* destination, std::size_t capacity) noexcept {
    std::size_t written = 0;
    for (std::u16string_view rest = string != nullptr ? string->units : u""; !rest.empty();) {
        const char32_t character = takeCharacter(rest);
        if (utf8Length(character) > capacity - written) break;
        putUtf8(destination + written, character);
        written += utf8Length(character);
    }
    return written;
}

std::optional<std::string> textOf(const VLString* string) noexcept {
    if (string == nullptr) return std::nullopt;
    try {
        std::string text(utf8LengthOf(string), '\0');
        copyUtf8(string, text.data(), text.size());
        return text;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

extern "C" {

const VLString* VLStringCreateWithUtf8(const char* bytes, size_t length) noexcept {
    if (bytes == nullptr && length != 0) return nullptr;
    return createString(std::string_view(bytes, length));
}

const VLString* VLStringCreateWithCString(const char* text) noexcept {
    return text != nullptr ? createString(std::string_view(text)) : nullptr;
}

const VLString* VLStringCreateWithUtf16(const uint16_t* units, size_t count) noexcept {
    if (units == nullptr && count != 0) return nullptr;
    static_assert(sizeof(char16_t) == sizeof(uint16_t));
    return createString(std::u16string_view(reinterpret_cast<const char16_t*>(units), count));
}

const VLString* VLStringRetain(const VLString* string) noexcept {
    return retainString(string);
}

void VLStringRelease(const VLString* string) noexcept {
    releaseString(string);
}

size_t VLStringLength(const VLString* string) noexcept {
    return string != nullptr ? string->units.size() : 0;
}

size_t VLStringCopyUtf8(const VLString* string, char* destination, size_t capacity) noexcept {
    if (destination != nullptr && capacity != 0)
        destination[copyUtf8(string, destination, capacity - 1)] = '\0';
    return utf8LengthOf(string);
}

size_t VLStringCopyUtf16(const VLString* string, uint16_t* destination, size_t capacity) noexcept {
    if (string == nullptr) return 0;
    if (destination != nullptr)
        std::memcpy(destination, string->units.data(),
                    std::min(capacity, string->units.size()) * sizeof(uint16_t));
    return string->units.size();
}

}  // extern "C"

}  // namespace veltra
