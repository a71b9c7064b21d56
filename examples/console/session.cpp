// SPDX-License-Identifier: MIT
#include "session.h"

#include "interruption.h"
#include "mix_file.h"
#include "output_file.h"
#include "text.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/terminate_report.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/platform/poll_run_loop.h"

#include <algorithm>
#include <array>

#include <unistd.h>

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
        } else if (!m_options.bounce.empty()) {
            runBounce();
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
    // It reads all names of the program, for which a run that only reads files would have to wait.
    VLInstallTerminateHandler();
    LiveOutput::News notice;
    m_output = std::make_unique<LiveOutput>(m_options.device, m_first->format().rate, notice);
    tell(notice);
    m_engine = std::make_unique<Engine>(Engine::Feeding::ByThread, m_output->rate());
    if (const std::string problem = m_output->start(*m_engine); !problem.empty()) complain(problem);

    PollRunLoop loop;
    RunLoop::setCurrent(&loop);
    QkTimer timer(kTickSeconds, this, action<&Session::tick>(), nullptr);
    timer.start();
    // All begin together.
    while (!isInterrupted() && addNextFile())
        loop.runOnce(seconds(0.0));
    m_engine->setPlaying(true);
    while (!isInterrupted() && m_engine->stripCount() > 0)
        loop.runOnce(seconds(kTickSeconds));
    m_output->stop();
    for (ReportEntry& entry : m_entries)
        entry.deviceUnderruns = m_output->underruns();
}

// The mix ends with its longest file, to the frame.
void Session::runBounce() {
    std::string problem;
    const std::int32_t wanted = m_options.device.rate;
    const std::int32_t rate = wanted > 0 ? wanted : m_first->format().rate;
    m_engine =
        std::make_unique<Engine>(Engine::Feeding::ByCallerResampled, rate, Engine::AtEnd::Stays);
    const auto mix = MixFile::create(m_options.bounce, rate, m_options.bits, problem);
    if (!mix) return complain(problem);
    while (addNextFile()) {
    }
    std::vector<float> samples(2 * kChunkFrames);
    const std::array<float*, 2> outputs{samples.data(), samples.data() + kChunkFrames};
    float peak = 0.0F;
    while (m_engine->isPlaying() && !isInterrupted()) {
        const std::int64_t before = m_engine->position();
        m_engine->feed(kChunkFrames);
        m_engine->processBlock(outputs.data(), outputs.size(), kChunkFrames);
        const auto frames = static_cast<std::size_t>(m_engine->position() - before);
        if (!mix->write(outputs[0], outputs[1], frames)) break;
        for (const float each : m_engine->takeOutputLevels().peaks)
            peak = std::max(peak, each);
    }
    if (isInterrupted()) return complain(m_options.bounce + ": the mix was given up");
    problem = whyNotWrite(m_options.bounce, OutputKind::Bounce);  // it may have come meanwhile
    if (problem.empty()) problem = mix->finish();
    if (!problem.empty()) return complain(problem);
    if (peak > 1.0F && m_options.bits != MixFormat::Float) {
        note(m_options.bounce +
             formatted(": the mix is %.1f dB too loud and cut off; take --bits float",
                       decibels(static_cast<double>(peak))));
    }
}

void Session::tick() {
    collect();
    tell(m_output->keepRunning());
    m_status.show(*m_engine, m_output->rate());
}

void Session::collect() {
    for (StripResult& result : m_engine->collect()) {
        if (!result.problem.empty()) complainOf(result.path, result.problem);
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
        complainOf(entry.path, entry.error);
    }
    return nullptr;
}

// Of a file, which its report tells of, too: once will do where both go to one terminal.
void Session::complainOf(const std::string& path, const std::string& problem) {
    m_hasProblems = true;
    const bool isReportBeside = m_options.headless && m_options.report == "-" &&
                                ::isatty(STDOUT_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
    if (!isReportBeside) complain(path + ": " + problem);
}

// Without date and time, as programs of the command line speak; the system log adds them.
void Session::note(const std::string& text) {
    m_status.clear();
    if (m_progress) m_progress->clear();
    QKLogCString(kLogNotice, false, kLogTag, "veltra-console: %s", printable(text).c_str());
}

void Session::tell(const LiveOutput::News& news) {
    if (news.isProblem) {
        complain(news.text);
    } else if (!news.text.empty()) {
        note(news.text);
    }
}

void Session::complain(const std::string& problem) {
    m_status.clear();
    if (m_progress) m_progress->clear();
    m_hasProblems = true;
    QKLogCString(kLogError, false, kLogTag, "veltra-console: %s", printable(problem).c_str());
}

}  // namespace veltra::console
