// SPDX-License-Identifier: MIT
#include "progress_board.h"

#include "veltra/infrastructure/progress_indicator.h"

#include <algorithm>
#include <array>
#include <exception>
#include <list>
#include <mutex>
#include <utility>

namespace veltra::console {

namespace {

// Outlives the board, as indicators may. The handle of a line is its address.
struct Board {
    std::mutex mutex;  // guards what follows
    std::list<ProgressLine> lines;
    std::uint64_t lastNumber = 0;
    ProgressBoard::Listener listener;
};

Board& board() {
    static Board board;
    return board;
}

std::vector<ProgressLine> copyOf(const std::list<ProgressLine>& lines) {
    return {lines.begin(), lines.end()};
}

// With the lock held. Without memory the listener misses this one.
void tell(const void* handle, bool isOver) noexcept try {
    const Board& all = board();
    if (!all.listener) return;
    const auto place = std::find_if(all.lines.begin(), all.lines.end(),
                                    [handle](const auto& line) { return &line == handle; });
    all.listener(copyOf(all.lines),
                 static_cast<std::size_t>(std::distance(all.lines.begin(), place)), isOver);
} catch (const std::exception&) {
    return;
}

// A line that cannot be shown for want of memory is not shown: the work goes on.
void* addLine(const VLString* title, const void* /*identifier*/) noexcept try {
    std::array<char, 256> text{};
    VLStringCopyUtf8(title, text.data(), text.size());
    const std::lock_guard lock(board().mutex);
    ProgressLine* const line =
        &board().lines.emplace_back(ProgressLine{text.data(), -1.0, ++board().lastNumber});
    tell(line, false);
    return line;
} catch (const std::exception&) {
    return nullptr;
}

void endLine(void* handle) noexcept {
    if (handle == nullptr) return;
    const std::lock_guard lock(board().mutex);
    tell(handle, true);
    board().lines.remove_if([handle](const ProgressLine& line) { return &line == handle; });
}

std::int32_t setValue(void* handle, double value) noexcept {
    if (handle == nullptr) return 0;
    const std::lock_guard lock(board().mutex);
    static_cast<ProgressLine*>(handle)->value = value;
    tell(handle, false);
    return 1;
}

}  // namespace

ProgressBoard::ProgressBoard(Listener listener) {
    {
        const std::lock_guard lock(board().mutex);
        board().listener = std::move(listener);
    }
    const VLProgressIndicatorService service{&addLine, &endLine, &setValue, nullptr};
    VLProvideProgressIndicatorService(&service);
}

ProgressBoard::~ProgressBoard() {
    VLProvideProgressIndicatorService(nullptr);
    const std::lock_guard lock(board().mutex);
    board().listener = nullptr;
}

std::vector<ProgressLine> ProgressBoard::lines() const {
    const std::lock_guard lock(board().mutex);
    return copyOf(board().lines);
}

// The framework calls nobody back while it looks for a handle, so the lock may be held.
void ProgressBoard::cancelAll() noexcept {
    const std::lock_guard lock(board().mutex);
    for (const ProgressLine& line : board().lines)
        VLCancelProgressIndicator(&line);
}

}  // namespace veltra::console
