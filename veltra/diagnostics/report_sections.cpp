// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/report_sections.h"

#include "veltra/base/whole_characters.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

namespace veltra {

namespace {

constexpr std::size_t kLongestLine = 1024;

using Slot = std::atomic<const ReportSection*>;

// Ready before any constructor runs.
constinit std::array<Slot, kMostReportSections> slots{};

// What fits of `piece`; returns the room behind it.
std::span<char> put(std::string_view piece, std::span<char> room) noexcept {
    const std::size_t size = std::min(piece.size(), room.size());
    std::memcpy(room.data(), piece.data(), size);
    return room.subspan(size);
}

template <typename Take>
void takeLines(Take take) {
    std::array<const ReportSection*, kMostReportSections> sections{};
    std::size_t count = 0;
    for (const Slot& slot : slots) {
        const ReportSection* const section = slot.load(std::memory_order_acquire);  // with add
        if (section != nullptr) sections[count++] = section;
    }
    const auto present = std::span(sections).first(count);
    std::ranges::sort(present, {}, [](const ReportSection* section) {
        return std::pair(std::string_view(section->name), section);
    });
    const ReportSection* last = nullptr;
    for (const ReportSection* const section : present) {
        if (section == std::exchange(last, section)) continue;  // two threads added it at once
        std::array<char, kLongestLine> text{};
        section->write(text.data(), text.size());
        text.back() = '\0';
        std::ranges::replace(text, '\n', ' ');
        const std::string_view line = wholeCharacters(text.data());  // the writer may have cut it
        if (!line.empty()) take(std::string_view(section->name), line);
    }
}

}  // namespace

bool addReportSection(const ReportSection& section) noexcept {
    for (const Slot& slot : slots)
        if (slot.load(std::memory_order_relaxed) == &section) return true;
    for (Slot& slot : slots) {
        const ReportSection* expected = nullptr;
        if (slot.compare_exchange_strong(expected, &section, std::memory_order_release,
                                         std::memory_order_relaxed))
            return true;
    }
    return false;
}

void removeReportSection(const ReportSection& section) noexcept {
    for (Slot& slot : slots) {
        const ReportSection* expected = &section;
        slot.compare_exchange_strong(expected, nullptr, std::memory_order_relaxed);
    }
}

std::size_t writeReportSections(char* text, std::size_t capacity) noexcept {
    if (capacity == 0) return 0;
    const std::span<char> all(text, capacity - 1);
    std::span<char> room = all;
    takeLines([&room](std::string_view name, std::string_view line) {
        for (const std::string_view piece :
             {name, std::string_view(": "), line, std::string_view("\n")})
            room = put(piece, room);
    });
    const std::size_t size = wholeCharacters({text, all.size() - room.size()}).size();
    text[size] = '\0';
    return size;
}

std::string reportSections() {
    std::string text;
    takeLines([&text](std::string_view name, std::string_view line) {
        text.append(name).append(": ").append(line).append(1, '\n');
    });
    return text;
}

}  // namespace veltra
