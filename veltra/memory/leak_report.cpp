// SPDX-License-Identifier: MIT
#include "veltra/memory/leak_report.h"

#include "veltra/memory/detail/leak_groups.h"
#include "veltra/memory/detail/leak_guard_preferences.h"
#include "veltra/memory/detail/leak_guard_zone.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/symbol_names.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace veltra {

namespace {

// Text in fixed memory; what does not fit is left out.
class Text {
public:
    void clear() noexcept { m_size = 0; }

    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...) noexcept {
        char* const end = m_text.data() + m_size;
        const std::size_t room = m_text.size() - m_size;
        std::va_list arguments;
        va_start(arguments, format);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start() is just above
        const int length = std::vsnprintf(end, room, format, arguments);
        va_end(arguments);
        if (length > 0)
            m_size = std::min(m_size + static_cast<std::size_t>(length), m_text.size() - 1);
    }

    const char* get() const noexcept { return m_text.data(); }

private:
    std::array<char, 17600> m_text{};  // 16 lines as long as names may be
    std::size_t m_size = 0;
};

std::string_view lastPart(const char* path) noexcept {
    const std::string_view whole = path;
    return whole.substr(whole.rfind('/') + 1);
}

// Whether the functions further out are of interest.
bool addFrame(std::uintptr_t returnAddress, Text& text) noexcept {
    const SymbolName name = symbolNameOf(returnAddress - 1);
    if (name.function[0] != '\0')
        text.add("    %s", name.function.data());
    else
        text.add("    0x%08llx", static_cast<unsigned long long>(returnAddress));
    if (name.file[0] != '\0')
        text.add("  %s:%d", name.file.data(), name.line);
    else if (name.object[0] != '\0')
        text.add("  (%s)", lastPart(name.object.data()).data());
    text.add("\n");
    return std::string_view(name.function.data()) != "main";
}

void describe(const QKLeak& leak, Text& text) noexcept {
    text.clear();
    text.add("%zu %s in %zu %s\n", leak.bytes, leak.bytes == 1 ? "byte" : "bytes", leak.blocks,
             leak.blocks == 1 ? "block" : "blocks");
    for (int index = 0; index < leak.addressCount; ++index)
        if (!addFrame(leak.returnAddresses[index], text)) return;
}

bool isBlind() noexcept {
    return &AllocationZone::current() == &AllocationZone::process() &&
           AllocationZone::coverage() == AllocationZone::kNone;
}

long visitLeaks(QKLeakVisitor visitor, void* context) noexcept {
    if (detail::leakGuardInForce() == nullptr || isBlind()) return -1;
    const detail::Unrecorded own;
    const NoCancellation untilTheEnd;
    std::uint64_t total = 0;
    detail::LeakRecord* record =
        detail::groupByStack(detail::takeLeakRecords(), detail::freeLeakRecord);
    Text text;
    while (record != nullptr) {
        total += record->size;
        const auto& addresses = record->returnAddresses;
        const auto end = std::find(addresses.begin(), addresses.end(), std::uintptr_t{0});
        QKLeak leak{record->size, record->blocks, addresses.data(),
                    static_cast<int>(end - addresses.begin()), text.get()};
        if (visitor != nullptr) {
            describe(leak, text);
            visitor(context, &leak);
        }
        detail::LeakRecord* const next = record->next;
        detail::freeLeakRecord(record);
        record = next;
    }
    return static_cast<long>(std::min<std::uint64_t>(total, LONG_MAX));
}

}  // namespace

extern "C" {

long QKLeakGuardVisitLeaks(QKLeakVisitor visitor, void* context) noexcept {
    return visitLeaks(visitor, context);
}

long QKLeakGuardPrintLeaks() noexcept {
    struct Printed {
        std::uint64_t limit;
        std::uint64_t leaks;
        std::size_t blocks;
    } printed{};
    if (const auto* guard = detail::leakGuardInForce()) printed.limit = guard->printLimit();
    const long total = visitLeaks(
        [](void* context, const QKLeak* leak) {
            auto& state = *static_cast<Printed*>(context);
            state.blocks += leak->blocks;
            if (state.limit == 0 || state.leaks < state.limit) std::printf("leak: %s", leak->text);
            ++state.leaks;
        },
        &printed);
    const detail::Unrecorded own;
    const NoCancellation untilTheEnd;
    if (total == 0) std::puts("no leaks");
    if (total > 0)
        std::printf("%llu %s, %ld bytes in %zu blocks\n",
                    static_cast<unsigned long long>(printed.leaks),
                    printed.leaks == 1 ? "leak" : "leaks", total, printed.blocks);
    return total;
}

}  // extern "C"

}  // namespace veltra
