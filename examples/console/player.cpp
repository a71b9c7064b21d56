// SPDX-License-Identifier: MIT
#include "player.h"

#include <algorithm>
#include <utility>

namespace veltra::console {

Player::~Player() {
    if (m_output) m_output->stop();
}

std::unique_ptr<AudioFile> Player::open(const std::string& path, std::string& problem) {
    m_entries.push_back({path, {}, {}});
    auto file = AudioFile::open(path, problem);
    if (file) return file;
    m_entries.back().error = problem;
    problem = path + ": " + problem;
    return nullptr;
}

std::string Player::add(const std::string& path) {
    std::string problem;
    auto file = open(path, problem);
    if (!file) return problem;
    StripState strip;
    strip.key = ++m_lastKey;
    strip.path = path;
    strip.format = file->format();
    strip.meter.id = play(strip.key, std::move(file));
    m_state.strips.push_back(std::move(strip));
    m_overviews.request(path);
    return {};
}

StripId Player::play(StripKey key, std::unique_ptr<AudioFile> file) {
    if (!m_engine) {
        std::string notice;
        m_output = std::make_unique<LiveOutput>(m_device, file->format().rate, notice);
        m_engine = std::make_unique<Engine>(Engine::Feeding::ByThread, m_output->rate());
        if (!notice.empty()) m_problems.push_back(notice);
        notice = m_output->start(*m_engine);
        if (!notice.empty()) m_problems.push_back(notice);
        m_state.outputName = m_output->name();
    }
    const StripId id = m_engine->add(std::move(file));
    m_playing.push_back({id, key, m_entries.size() - 1});
    return id;
}

StripState* Player::find(StripKey key) {
    const auto found = std::find_if(m_state.strips.begin(), m_state.strips.end(),
                                    [key](const StripState& strip) { return strip.key == key; });
    return found != m_state.strips.end() ? &*found : nullptr;
}

void Player::remove(StripKey key) {
    StripState* const strip = find(key);
    if (strip == nullptr) return;
    m_engine->remove(strip->meter.id);
    std::erase_if(m_state.strips, [key](const StripState& each) { return each.key == key; });
}

void Player::setMuted(StripKey key, bool muted) {
    StripState* const strip = find(key);
    if (strip == nullptr) return;
    strip->meter.muted = muted;
    m_engine->setMuted(strip->meter.id, muted);
}

std::string Player::playAgain(StripKey key) {
    StripState* const strip = find(key);
    if (strip == nullptr || !strip->ended) return {};
    std::string problem;
    auto file = open(strip->path, problem);
    if (!file) return problem;
    strip->format = file->format();
    strip->meter.id = play(key, std::move(file));
    strip->ended = false;
    m_engine->setMuted(strip->meter.id, strip->meter.muted);
    return {};
}

std::vector<std::string> Player::tick() {
    if (!m_engine) return std::exchange(m_problems, {});
    std::vector<std::string> problems = std::exchange(m_problems, {});
    for (StripResult& result : m_engine->collect())
        keepResult(std::move(result), problems);
    std::string problem = m_output->keepRunning();
    if (!problem.empty()) {
        m_state.outputName = m_output->name();
        problems.push_back(std::move(problem));
    }
    return problems;
}

void Player::keepResult(StripResult&& result, std::vector<std::string>& problems) {
    const auto playing = std::find_if(m_playing.begin(), m_playing.end(),
                                      [&](const Playing& each) { return each.id == result.id; });
    if (!result.problem.empty()) problems.push_back(result.path + ": " + result.problem);
    StripState* const strip = find(playing->key);
    if (strip != nullptr && strip->meter.id == result.id) {
        strip->ended = true;
        std::fill(strip->meter.peaks.begin(), strip->meter.peaks.end(), 0.0F);
        strip->meter.framesPlayed = result.framesRead;
    }
    m_entries[playing->entry].result = std::move(result);
    m_playing.erase(playing);
}

const ConsoleState& Player::look() {
    m_state.reading = m_progress.lines();
    if (!m_engine) return m_state;
    for (StripMeter& meter : m_engine->meters()) {
        const auto strip = std::find_if(
            m_state.strips.begin(), m_state.strips.end(),
            [&meter](const StripState& each) { return each.meter.id == meter.id && !each.ended; });
        if (strip != m_state.strips.end()) strip->meter = std::move(meter);
    }
    for (StripState& strip : m_state.strips) {
        if (strip.overview == nullptr) strip.overview = m_overviews.find(strip.path);
    }
    m_state.outputPeaks = m_engine->takeOutputPeaks();
    m_state.place = m_engine->musicalPosition();
    m_state.seconds = static_cast<double>(m_engine->position()) / m_output->rate();
    return m_state;
}

std::vector<ReportEntry> Player::finish() {
    if (m_engine) {
        m_output->stop();
        m_engine->removeAll();
        std::vector<std::string> problems;
        for (StripResult& result : m_engine->collect())
            keepResult(std::move(result), problems);
    }
    return std::exchange(m_entries, {});
}

bool Player::undoRemove() {
    return false;
}

void Player::move(StripKey /*key*/, int /*place*/) {}
void Player::setGain(StripKey /*key*/, double /*decibels*/) {}
void Player::setPan(StripKey /*key*/, double /*pan*/) {}
void Player::setSoloed(StripKey /*key*/, bool /*soloed*/) {}
void Player::setPlaying(bool /*playing*/) {}
void Player::locate(std::int64_t /*frame*/) {}
void Player::setLoop(bool /*on*/, std::int64_t /*begin*/, std::int64_t /*end*/) {}
void Player::setTempo(double /*beatsPerMinute*/) {}
void Player::setMeter(int /*beatsPerBar*/, int /*beatUnit*/) {}
void Player::setOutputGain(double /*decibels*/) {}
void Player::setOutputBalance(double /*balance*/) {}
void Player::setDimmed(bool /*dimmed*/) {}
void Player::setMono(bool /*mono*/) {}

std::vector<DeviceInfo> Player::devices() const {
    return {};
}

std::string Player::chooseDevice(const std::string& /*id*/, std::int32_t /*rate*/,
                                 std::uint32_t /*blockFrames*/) {
    return {};
}

}  // namespace veltra::console
