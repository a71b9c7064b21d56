// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/system_queries.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/base/immortal.h"
#include "veltra/base/text_parts.h"
#include "veltra/platform/linux/processor_identity.h"
#include "veltra/platform/linux/system_files.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include <sched.h>
#include <sys/auxv.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace veltra {

namespace {

using Number = std::optional<std::uint64_t>;

constexpr std::uint64_t kHertzInKilohertz = 1'000;
constexpr double kHertzInMegahertz = 1e6;
constexpr std::uint32_t kVectorInstructions = 0x10;

// Of the main thread: a pinned audio thread that asks first must not answer for all others.
Number processorCount() noexcept {
    std::array<unsigned long, 1024> mask{};  // as many processors as any kernel is built for
    cpu_set_t* const set = reinterpret_cast<cpu_set_t*>(mask.data());
    if (::sched_getaffinity(::getpid(), sizeof mask, set) == 0) {
        const int count = CPU_COUNT_S(sizeof mask, set);
        if (count > 0) return static_cast<std::uint64_t>(count);
    }
    const long online = ::sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? Number(static_cast<std::uint64_t>(online)) : std::nullopt;
}

// "cpu MHz : 2599.998", on PowerPC "clock : 2500.000000MHz".
Number frequencyInList() noexcept {
    SystemFileLines lines("/proc/cpuinfo");
    for (std::string_view line; lines.next(line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, colon));
        if (key != "cpu MHz" && key != "clock") continue;
        const std::string_view text = trimmed(line.substr(colon + 1));
        double megahertz = 0;
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), megahertz);
        if (error == std::errc() && megahertz > 0 && megahertz < 1e9)
            return static_cast<std::uint64_t>(std::llround(megahertz * kHertzInMegahertz));
    }
    return {};
}

Number memorySize() noexcept {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long size = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || size <= 0) return {};
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size);
}

bool hasFloatingPoint() noexcept {
#ifdef __powerpc__
    constexpr unsigned long kHasFloatingPoint = 0x08000000;
    return (::getauxval(AT_HWCAP) & kHasFloatingPoint) != 0;
#else
    return true;
#endif
}

bool hasVectorUnit() noexcept {
#ifdef __aarch64__
    return true;
#else
    const ProcessorFeatures features = ProcessorFeatures::current();
    return features.sse2 || features.altivec;
#endif
}

std::optional<std::array<std::uint64_t, 2>> taskSizes() noexcept {
    SystemFileLines lines("/proc/self/statm");
    std::string_view line;
    const long page = ::sysconf(_SC_PAGESIZE);
    if (page <= 0 || !lines.next(line)) return {};
    const std::string_view total = takeWord(line, " ");
    const Number virtualSize = numberAtStartOf(total, static_cast<std::uint64_t>(page));
    const Number residentSize = numberAtStartOf(line, static_cast<std::uint64_t>(page));
    if (!virtualSize || !residentSize) return {};
    return std::array{*residentSize, *virtualSize};
}

std::optional<std::size_t> copied(const void* from, std::size_t length,
                                  std::span<std::byte> answer) noexcept {
    std::memcpy(answer.data(), from, std::min(length, answer.size()));
    return length;
}

template <typename Value>
std::optional<std::size_t> copied(const std::optional<Value>& value,
                                  std::span<std::byte> answer) noexcept {
    if (!value) return {};
    return copied(&*value, sizeof *value, answer);
}

std::optional<std::size_t> copied(bool value, std::span<std::byte> answer) noexcept {
    return copied(std::optional<std::uint32_t>(value ? 1 : 0), answer);
}

class LinuxSystemQueries final : public SystemQueries {
public:
    std::optional<std::size_t> bytes(SystemKey key,
                                     std::span<std::byte> answer) const noexcept override {
        const NoCancellation whileFilesAreRead;
        const ErrnoKeeper keeper;
        switch (key) {
            case SystemKey::ProcessorCount:
                return copied(processorCount(), answer);
            case SystemKey::MemorySize:
                return copied(memorySize(), answer);
            case SystemKey::HasFloatingPoint:
                return copied(hasFloatingPoint(), answer);
            case SystemKey::HasVectorUnit:
                return copied(hasVectorUnit(), answer);
            case SystemKey::ProcessorFrequency:
                return copied(processorFrequency(ProcessorIdentity::current().baseFrequency),
                              answer);
            case SystemKey::ProcessorType:
                return copied(processorType(ProcessorIdentity::current()), answer);
            case SystemKey::ProcessorSubtype:
                return copied(processorSubtype(ProcessorIdentity::current()), answer);
            case SystemKey::ProcessorFamily:
                return copied(processorFamily(ProcessorIdentity::current()), answer);
            case SystemKey::KernelRelease:
                return kernelRelease(answer);
            case SystemKey::BootTime:
                return bootTime(answer);
            case SystemKey::BootSeconds:
                return copied(numberInSystemFile("/proc/stat", "btime"), answer);
            case SystemKey::NativeProcessorType:
                return copied(nativeProcessorType(ProcessorIdentity::current()), answer);
            case SystemKey::PowerPcFeatures:
                return powerPcFeatures(answer);
            case SystemKey::TaskSizes:
                return copied(taskSizes(), answer);
        }
        return {};
    }

private:
    static std::optional<std::size_t> kernelRelease(std::span<std::byte> answer) noexcept {
        utsname names{};
        if (::uname(&names) != 0) return {};
        return copied(names.release, std::strlen(names.release), answer);
    }

    static std::optional<std::size_t> bootTime(std::span<std::byte> answer) noexcept {
        const Number seconds = numberInSystemFile("/proc/stat", "btime");
        if (!seconds) return {};
        const auto narrow = static_cast<std::int32_t>(std::min<std::uint64_t>(*seconds, INT32_MAX));
        return copied(std::optional(std::array<std::int32_t, 2>{narrow, 0}), answer);
    }

    static std::optional<std::size_t> powerPcFeatures(std::span<std::byte> answer) noexcept {
        const ProcessorFeatures features = ProcessorFeatures::current();
        if (features.family != ProcessorFeatures::Family::PowerPc) return {};
        return copied(std::optional(features.altivec ? kVectorInstructions : 0U), answer);
    }
};

}  // namespace

std::optional<std::uint64_t> processorFrequency(std::uint64_t base) noexcept {
    for (const char* path : {"/sys/devices/system/cpu/cpu0/cpufreq/base_frequency",
                             "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq"}) {
        SystemFileLines lines(path);
        std::string_view line;
        if (!lines.next(line)) continue;
        const Number hertz = numberAtStartOf(trimmed(line), kHertzInKilohertz);
        if (hertz && *hertz > 0) return hertz;
    }
    return base > 0 ? Number(base) : frequencyInList();
}

const SystemQueries& platformSystemQueries() noexcept {
    static const Immortal<LinuxSystemQueries> queries;
    return *queries;
}

}  // namespace veltra
