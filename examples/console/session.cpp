// SPDX-License-Identifier: MIT
#include "session.h"

#include "interruption.h"
#include "text.h"
#include "veltra/diagnostics/log.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/platform/poll_run_loop.h"

namespace veltra::console {

namespace {

constexpr char kLogTag[] = "veltra-console";
constexpr double kTickSeconds = 0.1;

// Files that a headless run reads side by side: enough to show that it can, few enough for the
// caches and for the limit on open files.
constexpr std::size_t kHeadlessStrips = 4;

}  // namespace

Session::Session(Options options) : m_options(std::move(options)) {
    for (const std::string& path : m_options.files)
        m_entries.push_back({path, {}, {}});
    if (m_options.progress) m_progress.emplace();
}

int Session::run() {
    listenForInterruption();
    m_first = openNextFile();
    if (m_first) {
        if (m_options.headless) {
            runHeadless();
        } else {
            runLive();
        }
        m_engine->removeAll();
        collect();
    }
    m_status.clear();
    if (!m_options.report.empty()) {
        const std::string problem = writeReport(makeReport(m_entries), m_options.report);
        if (!problem.empty()) complain(problem);
    }
    return m_hasProblems ? 1 : 0;
}

// No thread, no clock and nobody who listens: feed, render, look, as fast as the machine can.
void Session::runHeadless() {
    m_engine = std::make_unique<Engine>(Engine::Feeding::ByCaller, m_first->format().rate);
    while (!isInterrupted()) {
        while (m_engine->stripCount() < kHeadlessStrips && addNextFile()) {
        }
        if (m_engine->stripCount() == 0) break;
        m_engine->feed(kChunkFrames);
        m_engine->processBlock(nullptr, 0, kChunkFrames);
        collect();
    }
}

void Session::runLive() {
    std::string notice;
    m_output = std::make_unique<LiveOutput>(m_options.device, m_first->format().rate, notice);
    if (!notice.empty()) {
        QKLogCString(kLogNotice, QKLogWithSyslogBanner(), kLogTag, "%s", notice.c_str());
    }
    m_engine = std::make_unique<Engine>(Engine::Feeding::ByThread, m_output->rate());
    if (const std::string problem = m_output->start(*m_engine); !problem.empty()) complain(problem);

    PollRunLoop loop;
    RunLoop::setCurrent(&loop);
    QkTimer timer(kTickSeconds, this, action<&Session::tick>(), nullptr);
    timer.start();
    bool hasMore = true;
    while (!isInterrupted() && (hasMore || m_engine->stripCount() > 0)) {
        hasMore = hasMore && addNextFile();
        loop.runOnce(seconds(hasMore ? 0.0 : kTickSeconds));
    }
    m_output->stop();
}

void Session::tick() {
    collect();
    if (const std::string problem = m_output->keepRunning(); !problem.empty()) complain(problem);
    if (m_status.isShown()) m_status.show(m_engine->musicalPosition(), m_engine->meters());
}

void Session::collect() {
    for (StripResult& result : m_engine->collect()) {
        if (!result.problem.empty()) complain(result.path + ": " + result.problem);
        m_entries[m_entryOfStrip[result.id]].result = std::move(result);
    }
}

// Answers false when no file is left.
bool Session::addNextFile() {
    std::unique_ptr<AudioFile> file = m_first ? std::move(m_first) : openNextFile();
    if (!file) return false;
    const StripId id = m_engine->add(std::move(file));
    m_entryOfStrip.resize(id + 1);
    m_entryOfStrip[id] = m_opened - 1;
    return true;
}

// The next file that can be opened; those that cannot are complained about and passed over.
std::unique_ptr<AudioFile> Session::openNextFile() {
    while (m_opened < m_entries.size()) {
        ReportEntry& entry = m_entries[m_opened++];
        if (auto file = AudioFile::open(entry.path, entry.error)) return file;
        complain(entry.path + ": " + entry.error);
    }
    return nullptr;
}

void Session::complain(const std::string& problem) {
    m_status.clear();
    if (m_progress) m_progress->clear();
    m_hasProblems = true;
    QKLogCString(kLogError, QKLogWithSyslogBanner(), kLogTag, "%s", printable(problem).c_str());
}

}  // namespace veltra::console
