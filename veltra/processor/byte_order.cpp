#include "veltra/processor/byte_order.h"

#include "veltra/processor/detail/bytes.h"

#include <utility>

namespace veltra {

namespace {

// The groups that a counted form works on: none when count - 1, taken as signed, is negative.
constexpr std::size_t effectiveCount(std::uint32_t count) noexcept {
    return static_cast<std::int32_t>(count - 1) < 0 ? 0 : count;
}

static_assert(effectiveCount(0) == 0 && effectiveCount(1) == 1);
static_assert(effectiveCount(0x8000'0000U) == 0x8000'0000U && effectiveCount(0x8000'0001U) == 0);

template <class Word>
void reverseCounted(void* destination, const void* source, std::size_t count) noexcept {
    if (destination == nullptr || source == nullptr) return;
    detail::reverseWords<Word>(static_cast<unsigned char*>(destination),
                               static_cast<const unsigned char*>(source), count);
}

void exchangeOuterBytes(unsigned char* samples, std::size_t count) noexcept {
    for (std::size_t index = 0; index < count; ++index) {
        std::swap(samples[3 * index], samples[3 * index + 2]);
    }
}

void moveSilence(unsigned char* samples, std::size_t count) noexcept {
    for (std::size_t index = 0; index < count; ++index) {
        samples[index] ^= 0x80U;
    }
}

}  // namespace

void PSwapLongLong(void* buffer, uint32_t count) noexcept {
    reverseCounted<std::uint64_t>(buffer, buffer, effectiveCount(count));
}

void PSwapLong(void* buffer, uint32_t count) noexcept {
    reverseCounted<std::uint32_t>(buffer, buffer, effectiveCount(count));
}

void PSwapWord(void* buffer, uint32_t count) noexcept {
    reverseCounted<std::uint16_t>(buffer, buffer, effectiveCount(count));
}

void PSwapCopyLong(void* destination, const void* source, uint32_t count) noexcept {
    reverseCounted<std::uint32_t>(destination, source, effectiveCount(count));
}

void SwapInt32(void* value) noexcept {
    reverseCounted<std::uint32_t>(value, value, 1);
}

void SwapLong(void* value) noexcept {
    reverseCounted<std::uint32_t>(value, value, 1);
}

bool ProcessSwapIntel(void* buffer, uint32_t sampleCount, uint32_t /*ignored*/,
                      int32_t bitsPerSample) noexcept {
    if (buffer == nullptr) return true;
    auto* const samples = static_cast<unsigned char*>(buffer);
    switch (bitsPerSample) {
        case 32:
            detail::reverseWords<std::uint32_t>(samples, samples, sampleCount);
            break;
        case 24:
            exchangeOuterBytes(samples, sampleCount);
            break;
        case 8:
            moveSilence(samples, sampleCount);
            break;
        default:
            detail::reverseWords<std::uint16_t>(samples, samples, sampleCount);
            break;
    }
    return true;
}

}  // namespace veltra
