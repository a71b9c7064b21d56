// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/recent_log_lines.h"

#include "veltra/base/whole_characters.h"
#include "veltra/diagnostics/log_ring.h"

#include <algorithm>
#include <cstring>

namespace veltra {

namespace {

constexpr std::size_t beingWritten(std::size_t number) noexcept {
    return 2 * number + 1;
}

constexpr std::size_t isThere(std::size_t number) noexcept {
    return 2 * number + 2;
}

char* findLineFeed(char* begin, const char* end) noexcept {
    return static_cast<char*>(std::memchr(begin, '\n', static_cast<std::size_t>(end - begin)));
}

constinit LogRing ring;

}  // namespace

LogRing& recentLogLines() noexcept {
    return ring;
}

void LogRing::add(std::string_view banner, std::string_view message) noexcept {
    if (message.ends_with('\n')) message.remove_suffix(1);
    // A line as long as a place: its length, then its text. The words behind it are not touched.
    std::array<Word, kWords> words;
    static_assert(sizeof words == sizeof(Length) + kLongestLine);
    const std::size_t copied = std::min(banner.size() + message.size(), kLongestLine);
    const std::size_t used = (sizeof(Length) + copied + sizeof(Word) - 1) / sizeof(Word);
    words[used - 1] = 0;
    auto* const text = reinterpret_cast<char*>(words.data()) + sizeof(Length);
    const std::size_t start = banner.copy(text, copied);
    message.copy(text + start, copied - start);
    std::size_t size = copied;
    if (size < banner.size() + message.size()) size = wholeCharacters({text, size}).size();
    for (char* at = text; (at = findLineFeed(at, text + size)) != nullptr;)
        *at = ' ';
    const auto length = static_cast<Length>(size);
    std::memcpy(words.data(), &length, sizeof length);

    // Relaxed: the number says nothing about any place.
    const std::size_t number = m_next.fetch_add(1, std::memory_order_relaxed);
    Place& place = m_places[number % kLines];
    std::size_t state = place.state.load(std::memory_order_relaxed);
    const auto isAhead = [number](std::size_t some) {  // also when the numbers have started again
        return static_cast<std::ptrdiff_t>(some - isThere(number)) > 0;
    };
    if (state % 2 == 1 || isAhead(state)) return;
    // Acquire: this writer's words come after those of the one before.
    if (!place.state.compare_exchange_strong(state, beingWritten(number), std::memory_order_acquire,
                                             std::memory_order_relaxed))
        return;
    // With the fence of read(): whoever sees a word of this line sees that it is being written.
    std::atomic_thread_fence(std::memory_order_release);
    for (std::size_t i = 0; i < used; ++i)
        place.words[i].store(words[i], std::memory_order_relaxed);
    place.state.store(isThere(number), std::memory_order_release);  // with read()
}

std::size_t LogRing::end() const noexcept {
    return m_next.load(std::memory_order_relaxed);
}

std::size_t LogRing::first() const noexcept {
    const std::size_t after = end();
    return after - std::min(after, kLines);
}

std::string_view LogRing::read(std::size_t number, Copy& copy) const noexcept {
    const Place& place = m_places[number % kLines];
    if (place.state.load(std::memory_order_acquire) != isThere(number)) return {};  // with add()
    std::array<Word, kWords> words;
    for (std::size_t i = 0; i < kWords; ++i)
        words[i] = place.words[i].load(std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_acquire);  // with the fence of add()
    if (place.state.load(std::memory_order_relaxed) != isThere(number)) return {};
    Length length = 0;
    std::memcpy(&length, words.data(), sizeof length);
    std::memcpy(copy.data(), reinterpret_cast<const char*>(words.data()) + sizeof length,
                copy.size());
    return {copy.data(), length};
}

extern "C" void VLVisitRecentLogLines(VLLogLineVisitor visit, void* context) noexcept {
    if (visit == nullptr) return;
    const LogRing& lines = recentLogLines();
    LogRing::Copy copy;
    const std::size_t end = lines.end();
    for (std::size_t number = lines.first(); number != end; ++number) {
        const std::string_view line = lines.read(number, copy);
        if (line.data() != nullptr) visit(context, line.data(), line.size());
    }
}

}  // namespace veltra
