// SPDX-License-Identifier: MIT
// The choice among the variants of a kernel: one function written several times, plainly and for
// wider and wider instruction sets. When the library is loaded, each family of variants chooses the
// best one that the processor runs; until then, in constructors that run even earlier, calls go to
// "plain". Here a host, a test or a benchmark can see what was chosen and choose otherwise
// (variants.h does the same for C):
//
//     KernelFamily* crc = KernelFamily::find("crc32");
//     std::printf("crc32 runs as %s\n", crc->inForce());
//     crc->use("plain");
//     crc->useBest();
//
// All variants of a family give the same results, so that a choice may change at any time; a
// call that is under way ends in the variant that it began in.
//
// The environment of the process may choose, too, which helps to find out by telephone what a
// user's machine does not like. VELTRA_KERNELS is read once, when the library is loaded: entries
// with commas between them, "family:variant", or a variant alone for every family that has it.
//
//     VELTRA_KERNELS=samples:avx2,crc32:plain
//     VELTRA_KERNELS=plain
//
// An entry that names no family or variant of this processor changes nothing.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/processor_features.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace veltra {

// Thread: any. Realtime-safe: yes, but for prepare() and prepareAll().
class VELTRA_EXPORT KernelFamily {
public:
    KernelFamily(const KernelFamily&) = delete;
    KernelFamily& operator=(const KernelFamily&) = delete;

    // Every family there is, and the one of that name or null.
    static std::span<KernelFamily* const> all() noexcept;
    static KernelFamily* find(std::string_view name) noexcept;

    // Writes what is in force, "crc16 plain, crc32 pclmulqdq, ...", cut to `capacity` bytes with a
    // NUL. Returns the length of the whole text without its NUL. With `capacity` 0 nothing is
    // written, and `text` may be null.
    static std::size_t writeInForce(char* text, std::size_t capacity) noexcept;

    // The family's name, such as "crc32": for find() and for VELTRA_KERNELS.
    const char* name() const noexcept { return m_name; }

    // The variants, best first; the last is "plain" and runs everywhere.
    std::size_t variantCount() const noexcept { return m_variantCount; }

    // The name of a variant; null from variantCount() on.
    const char* variantName(std::size_t index) const noexcept;

    // Whether the processor runs a variant, as ProcessorFeatures::current() describes it; false
    // from variantCount() on.
    bool runs(std::size_t index) const noexcept;

    // The name of the variant that calls go to.
    const char* inForce() const noexcept;

    // Sends calls to the variant of that name. Returns false and changes nothing when there is
    // none or the processor does not run it.
    bool use(std::string_view variant) noexcept;

    // Undoes use(): sends calls to the best variant that runs here. Virtual, so that a program
    // that links a family statically also links the file that chooses at load.
    virtual void useBest() noexcept;

    // Runs the variant in force and the plain one on a few KiB and compares the results. They
    // differ on a machine that is broken: one that is overclocked, or an emulator that gets an
    // instruction wrong. Calls then go to the best of the slower variants that does agree, and a
    // line of the log says so; useBest() undoes it. Returns whether the results were the same. For
    // a host that wants to know when it starts.
    // Thread: any. Realtime-safe: no. It takes less than a millisecond.
    bool prepare() noexcept;

    // The same for every family. Returns whether all results were the same.
    // Thread: any. Realtime-safe: no.
    static bool prepareAll() noexcept;

protected:
    // Whether a variant runs on a processor with these features.
    using Test = bool (*)(const ProcessorFeatures& features) noexcept;

    // A family of `variantCount` variants, "plain" included. `name` is a string literal.
    constexpr KernelFamily(const char* name, std::size_t variantCount) noexcept
        : m_name(name), m_variantCount(variantCount) {}
    ~KernelFamily() = default;

private:
    virtual const char* nameAt(std::size_t index) const noexcept = 0;
    virtual Test testAt(std::size_t index) const noexcept = 0;
    virtual bool agreesWithPlain(std::size_t index) const noexcept = 0;
    virtual std::size_t chosen() const noexcept = 0;
    virtual void choose(std::size_t index) noexcept = 0;

    const char* const m_name;
    const std::size_t m_variantCount;
};

}  // namespace veltra
