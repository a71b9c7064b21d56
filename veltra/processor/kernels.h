// SPDX-License-Identifier: MIT
// The choice among the variants of a kernel: one function written several times, plainly and for
// wider and wider instruction sets. Each family of variants chooses the best one that the
// processor runs, once, when it is first called. Here a host, a test or a benchmark can see what
// was chosen and choose otherwise:
//
//     KernelFamily* crc = KernelFamily::find("crc32");
//     std::printf("crc32 runs as %s\n", crc->inForce());
//     crc->use("plain");
//     crc->useBest();
//
// All variants of a family give the same results, so that a choice may change at any time; a
// call that is under way ends in the variant that it began in.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/processor_features.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace veltra {

// Thread: any. Realtime-safe: yes, but inForce(), use() and runs() may be the first to ask the
// processor what it can do, which takes some microseconds.
class VELTRA_EXPORT KernelFamily {
public:
    KernelFamily(const KernelFamily&) = delete;
    KernelFamily& operator=(const KernelFamily&) = delete;

    // Every family there is, and the one of that name or null.
    static std::span<KernelFamily* const> all() noexcept;
    static KernelFamily* find(std::string_view name) noexcept;

    const char* name() const noexcept { return m_name; }

    // The variants, best first; the last is "plain" and runs everywhere.
    std::size_t variantCount() const noexcept { return m_variantCount; }

    // The name of a variant; null from variantCount() on.
    const char* variantName(std::size_t index) const noexcept;

    // Whether the processor, as ProcessorFeatures::current() tells it, runs a variant; false from
    // variantCount() on.
    bool runs(std::size_t index) const noexcept;

    // The name of the variant that calls go to. Chooses, when nothing has yet.
    const char* inForce() noexcept;

    // Sends calls to the variant of that name. Answers false and changes nothing when there is
    // none or the processor does not run it.
    bool use(std::string_view variant) noexcept;

    // Undoes use(): the next call chooses anew.
    void useBest() noexcept;

protected:
    using Test = bool (*)(const ProcessorFeatures& features) noexcept;

    constexpr KernelFamily(const char* name, std::size_t variantCount) noexcept
        : m_name(name), m_variantCount(variantCount) {}
    ~KernelFamily() = default;

    // The best variant that runs here.
    std::size_t best() const noexcept;

private:
    virtual const char* nameAt(std::size_t index) const noexcept = 0;
    virtual Test testAt(std::size_t index) const noexcept = 0;
    virtual std::size_t chosen() noexcept = 0;  // chooses, when nothing has yet
    virtual void choose(std::size_t index) noexcept = 0;
    virtual void forget() noexcept = 0;

    const char* const m_name;
    const std::size_t m_variantCount;
};

}  // namespace veltra
