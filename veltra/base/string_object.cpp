// SPDX-License-Identifier: MIT
#include "veltra/base/string_object.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/string_object_text.h"
#include "veltra/base/utf8.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace veltra {

namespace {

// The length in UTF-16 units, or nothing for ill-formed text.
template <typename View>
std::optional<std::size_t> measure(View text) noexcept {
    std::size_t length = 0;
    while (!text.empty()) {
        const DecodedCharacter first = firstCharacter(text);
        if (!first.isWellFormed) return std::nullopt;
        length += utf16Length(first.code);
        text.remove_prefix(first.length);
    }
    return length;
}

template <typename View>
const VLString* create(View text) noexcept {
    const std::optional<std::size_t> length = measure(text);
    if (!length || *length > (SIZE_MAX - sizeof(VLString)) / sizeof(char16_t)) return nullptr;
    void* memory = std::malloc(sizeof(VLString) + *length * sizeof(char16_t));
    if (memory == nullptr) return nullptr;
    void* const behind = static_cast<char*>(memory) + sizeof(VLString);
    auto* units = static_cast<char16_t*>(behind);
    for (char16_t* next = units; !text.empty();) {
        const DecodedCharacter first = firstCharacter(text);
        putUtf16(next, first.code);
        next += utf16Length(first.code);
        text.remove_prefix(first.length);
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
    for (std::u16string_view rest = string != nullptr ? string->units : u""; !rest.empty();) {
        const DecodedCharacter first = firstCharacter(rest);
        length += utf8Length(first.code);
        rest.remove_prefix(first.length);
    }
    return length;
}

std::size_t copyUtf8(const VLString* string, char* destination, std::size_t capacity) noexcept {
    std::size_t written = 0;
    for (std::u16string_view rest = string != nullptr ? string->units : u""; !rest.empty();) {
        const DecodedCharacter first = firstCharacter(rest);
        if (utf8Length(first.code) > capacity - written) break;
        putUtf8(destination + written, first.code);
        written += utf8Length(first.code);
        rest.remove_prefix(first.length);
    }
    return written;
}

std::optional<std::string> textOf(const VLString* string) noexcept {
    if (string == nullptr) return std::nullopt;
    return unlessOutOfMemory(std::nullopt, [string]() -> std::optional<std::string> {
        std::string text(utf8LengthOf(string), '\0');
        copyUtf8(string, text.data(), text.size());
        return text;
    });
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
