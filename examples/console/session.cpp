#include "session.h"

#include "interruption.h"
#include "text.h"
#include "veltra/diagnostics/log.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/platform/linux/poll_run_loop.h"

#include <array>

namespace veltra::console {

namespace {

constexpr char kLogTag[] = "veltra-console";
constexpr std::uint32_t kError = 3;
constexpr std::uint32_t kNotice = 5;
constexpr double kTickSeconds = 0.1;

// Files that a headless run reads side by side: enough to show that it can, few enough for the
// caches and for the limit on open files.
constexpr std::size_t kHeadlessStrips = 4;

void renderBlock(void* engine, float* const* outputs, std::uint32_t outputCount,
                 std::uint32_t frames) noexcept {
    static_cast<Engine*>(engine)->processBlock(outputs, outputCount, frames);
}

}  // namespace

Session::Session(Options options) : m_options(std::move(options)) {
    for (const std::string& path : m_options.files)
        m_entries.push_back({path, {}, {}});
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
        if (!problem.empty()) complain(m_options.report, problem);
    }
    return m_hasProblems ? 1 : 0;
}

// No thread and no clock: feed, render, look, as fast as the machine can.
void Session::runHeadless() {
    m_engine = std::make_unique<Engine>(Engine::Feeding::ByCaller, m_first->format().rate);
    std::vector<float> mix(kChunkFrames * 2);
    const std::array<float*, 2> outputs{mix.data(), mix.data() + kChunkFrames};
    while (!isInterrupted()) {
        while (m_engine->stripCount() < kHeadlessStrips && addNextFile()) {
        }
        if (m_engine->stripCount() == 0) break;
        m_engine->feed(kChunkFrames);
        m_engine->processBlock(outputs.data(), outputs.size(), kChunkFrames);
        collect();
    }
}

void Session::runLive() {
    std::unique_ptr<AudioOutput> output = openOutput(m_first->format().rate);
    m_engine = std::make_unique<Engine>(Engine::Feeding::ByThread, output->rate());
    startOutput(std::move(output));

    PollRunLoop loop;
    RunLoop::setCurrent(&loop);
    QkTimer timer(kTickSeconds, this, action<&Session::tick>(), nullptr);
    timer.start();
    bool hasMore = true;
    while (!isInterrupted() && (hasMore || m_engine->stripCount() > 0)) {
        hasMore = hasMore && addNextFile();
        loop.runOnce(hasMore ? 0.0 : kTickSeconds);
    }
    m_output->stop();
}

void Session::tick() {
    collect();
    if (!m_output->isRunning()) {
        complain(m_output->name(), "the audio device has stopped; playing to no device");
        startOutput(openNullOutput(m_output->rate()));
    }
    if (m_status.isShown()) m_status.show(m_engine->musicalPosition(), m_engine->meters());
}

void Session::collect() {
    for (StripResult& result : m_engine->collect()) {
        if (!result.problem.empty()) complain(result.path, result.problem);
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
        complain(entry.path, entry.error);
    }
    return nullptr;
}

std::unique_ptr<AudioOutput> Session::openOutput(std::int32_t rate) {
    if (m_options.device == Device::Auto) {
        std::string problem;
        if (auto device = openDeviceOutput(rate, problem)) return device;
        QKLogCString(kNotice, QKLogWithSyslogBanner(), kLogTag, "%s", problem.c_str());
    }
    return openNullOutput(rate);
}

void Session::startOutput(std::unique_ptr<AudioOutput> output) {
    m_output = std::move(output);  // the one before, if any, stops first
    if (m_output->start(&renderBlock, m_engine.get())) return;
    complain(m_output->name(), "the audio device does not start; playing to no device");
    m_output = openNullOutput(m_output->rate());
    m_output->start(&renderBlock, m_engine.get());
}

void Session::complain(const std::string& about, const std::string& problem) {
    m_status.clear();
    m_hasProblems = true;
    QKLogCString(kError, QKLogWithSyslogBanner(), kLogTag, "%s: %s", printable(about).c_str(),
                 problem.c_str());
}

}  // namespace veltra::console
