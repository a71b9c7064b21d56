// SPDX-License-Identifier: MIT
// Both sides of the progress service: a host that shows a line of text, a function that works on
// its own thread, and workers that post how far they are.
#include "veltra/base/string_object.h"
#include "veltra/infrastructure/progress_indicator.h"
#include "veltra/platform/poll_run_loop.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

// The host: one line on the terminal.
struct Line {
    std::string title;
    int shownPercent = -1;
    bool isOver = false;
};

static Line line;

static void* beginLine(const veltra::VLString* title, const void* /*identifier*/) {
    char text[64];
    veltra::VLStringCopyUtf8(title, text, sizeof text);
    line = {text};
    return &line;
}
static void endLine(void* handle) {
    static_cast<Line*>(handle)->isOver = true;
}
static std::int32_t showValue(void* handle, double value) {
    auto& shown = *static_cast<Line*>(handle);
    shown.shownPercent = static_cast<int>(value * 100.0);
    std::printf("%s: %d %%\n", shown.title.c_str(), shown.shownPercent);
    return 1;
}
static void showText(void* /*handle*/, const veltra::VLString* text) {
    char shown[64];
    veltra::VLStringCopyUtf8(text, shown, sizeof shown);
    std::printf("  %s\n", shown);
}

static void offerLines() {
    const veltra::VLProgressIndicatorService service{beginLine, endLine, showValue, showText};
    veltra::VLProvideProgressIndicatorService(&service);
}

// Returns how many blocks were converted.
static int convert(int blocks) {
    using namespace veltra;
    const VLString* const title = VLStringCreateWithCString("Converting");
    VLProgressIndicator* const progress =
        VLAcquireProgressIndicator(title, kVLProgressIndicatorEmptyID);
    VLStringRelease(title);
    int done = 0;
    while (done < blocks && !VLProgressIndicatorIsCancelled(progress)) {
        ++done;  // and what there is to do for a block
        VLSetProgressIndicatorValue(progress, static_cast<double>(done) / blocks);
        if (done == blocks / 2) VLCancelProgressIndicator(&line);  // the user presses "Stop"
    }
    VLReleaseProgressIndicator(progress);
    return done;
}

// Four workers and a thousand steps each, of which the host sees a few.
static void analyse(veltra::PollRunLoop& loop) {
    using namespace veltra;
    constexpr int kWorkers = 4;
    constexpr int kSteps = 1000;
    const VLString* const title = VLStringCreateWithCString("Analysing");
    VLProgressIndicator* const progress = VLAcquirePostedProgressIndicator(title, nullptr);
    VLStringRelease(title);
    std::atomic<int> done{0};
    const auto work = [&] {
        for (int step = 0; step < kSteps; ++step) {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
            VLPostProgressIndicatorValue(progress, (done + 1.0) / (kWorkers * kSteps));
            if (++done == kWorkers * kSteps) loop.stop();
        }
    };
    std::thread workers[kWorkers];
    for (std::thread& worker : workers)
        worker = std::thread(work);
    loop.run();  // delivers what the workers post
    for (std::thread& worker : workers)
        worker.join();
    VLPostProgressIndicatorValue(progress, 1.0);
    VLReleaseProgressIndicator(progress);  // delivers the last value
}

int main() {
    veltra::PollRunLoop loop;
    veltra::RunLoop::setCurrent(&loop);
    if (convert(10) != 10) return 1;  // nobody shows it, and nobody stops it
    offerLines();
    if (convert(10) != 5 || !line.isOver || line.shownPercent != 50) return 1;
    analyse(loop);
    veltra::VLProvideProgressIndicatorService(nullptr);
    return line.isOver && line.shownPercent == 100 ? 0 : 1;
}
