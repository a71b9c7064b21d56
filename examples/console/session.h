// SPDX-License-Identifier: MIT
// One run of the program: opens the files, lets the engine play or read them, keeps the terminal
// informed, and ends with the report.
#pragma once

#include "engine.h"
#include "live_output.h"
#include "options.h"
#include "report.h"
#include "status_lines.h"
#include "terminal_progress.h"
#include "veltra/base/weak_anchor.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

// Thread: main. Anchored, because a timer sends it actions.
class Session final : public Anchored {
public:
    explicit Session(Options options);

    // Answers the exit status.
    int run();

private:
    void runHeadless();
    void runLive();
    void runBounce();
    void note(const std::string& text);
    void tell(const LiveOutput::News& news);
    void tick();  // every 100 ms of a live run
    void collect();
    bool addNextFile();
    std::unique_ptr<AudioFile> openNextFile();
    void complain(const std::string& problem);
    void complainOf(const std::string& path, const std::string& problem);

    const Options m_options;
    std::vector<ReportEntry> m_entries;       // one for each file, in the order of the command line
    std::size_t m_opened = 0;                 // how many of them were tried
    std::unique_ptr<AudioFile> m_first;       // opened early, for its sample rate
    std::vector<std::size_t> m_entryOfStrip;  // by StripId
    std::optional<TerminalProgress> m_progress;  // before the engine, whose strips tell it
    std::unique_ptr<Engine> m_engine;
    std::unique_ptr<LiveOutput> m_output;  // after the engine: stops before the engine goes
    StatusLines m_status;
    bool m_hasProblems = false;
};

}  // namespace veltra::console
