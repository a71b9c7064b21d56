// SPDX-License-Identifier: MIT
#include "veltra/processor/utf8_text.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/diagnostics/text_buffer.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/text_services.h"
#include "veltra/processor/detail/self_check.h"
#include "veltra/processor/detail/utf8_kernels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace veltra {

namespace detail {

namespace {

#ifdef VELTRA_KERNEL_UTF8_AVX512
bool hasAvx512(const ProcessorFeatures& features) noexcept {
    return features.avx512f && features.avx512bw && features.bmi && features.bmi2;
}
#endif
#ifdef VELTRA_KERNEL_UTF8_AVX2
bool hasAvx2(const ProcessorFeatures& features) noexcept {
    return features.avx2 && features.bmi && features.bmi2;
}
#endif

constexpr KernelVariant<const kernels::Utf8Kernels*> kVariants[] = {
#ifdef VELTRA_KERNEL_UTF8_NEON
    {"neon", runsOnNeon, &kernels::kUtf8Neon},
#endif
#ifdef VELTRA_KERNEL_UTF8_AVX512
    {"avx512", hasAvx512, &kernels::kUtf8Avx512},
#endif
#ifdef VELTRA_KERNEL_UTF8_AVX2
    {"avx2", hasAvx2, &kernels::kUtf8Avx2},
#endif
#ifdef VELTRA_KERNEL_UTF8_SSE2
    {"sse2", runsOnSse2, &kernels::kUtf8Sse2},
#endif
    {"plain", runsEverywhere, &kernels::kUtf8Plain},
};

// Noise with a terminator: its own text, made ASCII, and as characters of two bytes; each whole
// and broken in the middle.
bool agree(const kernels::Utf8Kernels* one, const kernels::Utf8Kernels* other) noexcept {
    constexpr std::size_t kSize = 2000;
    for (const int kind : {0, 1, 2, 3, 4, 5}) {
        char text[kSize + 1] = {};
        for (std::size_t i = 0; i < kSize; ++i) {
            const auto byte = static_cast<unsigned char>(kNoise[i] | 1U);
            text[i] = static_cast<char>(kind < 2   ? byte
                                        : kind < 4 ? byte & 0x7FU
                                        : i % 2    ? 0x80U | byte >> 2
                                                   : 0xC0U | byte >> 3);
        }
        if (kind % 2 != 0) text[kSize / 2] = '\x80';
        if (one->asciiLength(text) != other->asciiLength(text) ||
            one->asciiLengthWithin(text, kSize / 3) != other->asciiLengthWithin(text, kSize / 3) ||
            one->check(text) != other->check(text))
            return false;
    }
    return true;
}

}  // namespace

constinit KernelChoice<const kernels::Utf8Kernels*> utf8Kernels{"utf8", kVariants, agree};

}  // namespace detail

namespace {

constexpr std::size_t kLongestCharacter = 6;
constexpr std::size_t kCopyPiece = 16384;  // stays in the nearest cache between its two readings

using StringPointer = std::unique_ptr<const VLString, decltype(&releaseString)>;

const kernels::Utf8Kernels& utf8Kernels() noexcept {
    return *detail::utf8Kernels.current();
}

std::string_view textFrom(const char* text) noexcept {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

std::size_t announcedLength(char character) noexcept {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0xC0   ? 1
           : byte < 0xE0 ? 2
           : byte < 0xF0 ? 3
           : byte < 0xF8 ? 4
           : byte < 0xFC ? 5
                         : 6;
}

// Whether no byte in front of `end` could announce a character that reaches over it.
bool isBoundary(const char* text, std::size_t end) noexcept {
    for (std::size_t back = 1; back < kLongestCharacter && back <= end; ++back)
        if (announcedLength(text[end - back]) > back) return false;
    return true;
}

// How much of `length` bytes makes whole characters that end within `capacity`. Looks for a
// boundary from the end, so that only odd input is read from its start.
std::size_t wholeCharacters(const char* text, std::size_t length, std::size_t capacity) noexcept {
    if (capacity - length >= kLongestCharacter - 1) return length;
    std::size_t whole = length;
    while (!isBoundary(text, whole))
        --whole;
    while (whole < length && announcedLength(text[whole]) <= capacity - whole)
        whole += announcedLength(text[whole]);
    return std::min(whole, length);
}

void copyCharacters(char* destination, const char* source, std::size_t capacity) noexcept {
    if (source == nullptr) source = "";
    while ((static_cast<unsigned char>(*source) & 0xC0U) == 0x80)
        ++source;
    if (destination == nullptr) return;
    std::size_t length = 0;
    for (bool atEnd = false; !atEnd && length < capacity;) {
        std::size_t piece = std::min(capacity - length, kCopyPiece);
        const void* const end = std::memchr(source + length, '\0', piece);
        atEnd = end != nullptr;
        if (atEnd)
            piece = static_cast<std::size_t>(static_cast<const char*>(end) - source) - length;
        std::memmove(destination + length, source + length, piece);
        length += piece;
    }
    const std::size_t whole = wholeCharacters(destination, length, capacity);
    std::memset(destination + whole, 0, capacity - whole);
}

const VLString* createFrom(const char* text) noexcept {
    const std::string_view view = textFrom(text);
    return view.empty() ? nullptr : createString(view);
}

void copyString(char* destination, const VLString* string, std::size_t capacity) noexcept {
    if (destination == nullptr || capacity == 0) return;
    std::u16string_view units = string != nullptr ? string->units : u"";
    bool isPairCut = false;
    if (units.size() > capacity - 1) {
        isPairCut = capacity > 1 && (units[capacity - 1] & 0xFC00U) == 0xDC00;
        units = units.substr(0, capacity - 1 - (isPairCut ? 1 : 0));
    }
    const VLString part = constantString(units);
    std::size_t written = copyUtf8(&part, destination, capacity - 1);
    // Only behind all of the rest, which leaves this byte free only when each unit took one.
    if (isPairCut && written == units.size() && utf8LengthOf(&part) == written)
        destination[written++] = '?';
    destination[written] = '\0';
}

enum class Describe { No, Yes };

void logWellFormed(const char* text, const char* complaint, Describe describe) noexcept {
    const std::string_view view = textFrom(text);
    if (view.empty()) return;
    if (!isWellFormedUtf8(view)) {
        logMessage(kLogNotice, wantedBanner(), nullptr, complaint);
        return;
    }
    if (describe == Describe::Yes) {
        const NoCancellation noCancellation;
        LocalTextBuffer<64> what;
        what.append("text of ");
        what.appendDecimal(static_cast<std::int64_t>(view.size()));
        what.append(" bytes: ");
        StandardError& stream = StandardError::current();
        stream.write(stream.inspect(), {what.view(), view, "\n"});
    }
    logMessage(kLogNotice, wantedBanner(), nullptr, view);
}

void convertToLegacy(char* destination, const char* source, std::size_t capacity,
                     const VLString** lost) noexcept {
    if (lost != nullptr && capacity > 0) *lost = nullptr;
    if (destination == nullptr) return;
    destination[0] = '\0';
    if (capacity == 0) return;
    const StringPointer string(createFrom(source), &releaseString);
    if (string == nullptr) return;
    const TextServices& services = TextServices::current();
    const std::size_t written =
        services.toLegacy(string->units, '_', {destination, capacity - 1}).value_or(0);
    destination[written] = '\0';
    if (lost == nullptr) return;
    const std::optional<std::u16string> readBack = services.fromLegacy({destination, written});
    if (readBack && *readBack != string->units) *lost = createString(*readBack);
}

}  // namespace

extern "C" {

size_t utf8_strlen(const char* text) noexcept {
    return text != nullptr ? utf8Kernels().asciiLength(text) : 0;
}

char* utf8_strncpy(char* destination, const char* source, size_t capacity) noexcept {
    copyCharacters(destination, source, capacity);
    return destination;
}

char* utf8_strlcpy(char* destination, const char* source, size_t capacity) noexcept {
    if (destination == nullptr || capacity == 0) return destination;
    copyCharacters(destination, source, capacity - 1);
    destination[capacity - 1] = '\0';
    return destination;
}

int utf8_check(const char* text) noexcept {
    return text != nullptr && utf8Kernels().check(text) ? 1 : 0;
}

int utf8_verify() noexcept {
    return 0;
}

int utf8_is_ascii(const char* text, size_t length) noexcept {
    if (text == nullptr) return 0;
    const kernels::Utf8Kernels& kernels = utf8Kernels();
    const std::size_t run =
        length == 0 ? kernels.asciiLength(text) : kernels.asciiLengthWithin(text, length);
    return (length != 0 && run == length) || text[run] == '\0' ? 1 : 0;
}

const VLString* utf8_to_cfstring(const char* text) noexcept {
    return createFrom(text);
}

const VLString* utf8_to_nsstring(const char* text) noexcept {
    return createFrom(text);
}

void utf8_from_cfstring(char* destination, const VLString* string, size_t capacity) noexcept {
    copyString(destination, string, capacity);
}

void utf8_from_nsstring(char* destination, const VLString* string, size_t capacity) noexcept {
    copyString(destination, string, capacity);
}

void utf8_log(const char* text) noexcept {
    logWellFormed(text, "utf8_log: malformed string", Describe::No);
}

void utf8_trace(const char* text) noexcept {
    logWellFormed(text, "utf8_trace: malformed string", Describe::Yes);
}

char* utf8_to_fsspecFileSystemCString(char* destination, const char* source, size_t capacity,
                                      const VLString** lost) noexcept {
    convertToLegacy(destination, source, capacity, lost);
    return destination;
}

char* utf8_to_fsspecFileSystemPascalString(char* destination, const char* source, size_t capacity,
                                           const VLString** lost) noexcept {
    convertToLegacy(destination, source, std::min<size_t>(capacity, 255), lost);
    if (destination == nullptr) return destination;
    const std::size_t length = std::strlen(destination);
    std::memmove(destination + 1, destination, length);
    destination[0] = static_cast<char>(static_cast<unsigned char>(length));
    return destination;
}

int utf8_to_fileSystemRepresentation(char* destination, const char* source,
                                     size_t capacity) noexcept {
    if (destination == nullptr || capacity == 0) return 0;
    const std::string_view text = textFrom(source);
    const bool isRepresented = text.size() < capacity && isWellFormedUtf8(text);
    const std::size_t length = isRepresented ? text.copy(destination, text.size()) : 0;
    destination[length] = '\0';
    return isRepresented ? 1 : 0;
}

}  // extern "C"

}  // namespace veltra
