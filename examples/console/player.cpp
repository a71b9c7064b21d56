// SPDX-License-Identifier: MIT
#include "player.h"

#include "background.h"

#include <algorithm>
#include <chrono>
#include <cmath>
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
    if (!m_engine || std::exchange(m_isForKeysAlone, false)) {
        const std::int32_t rate = file->format().rate;
        if (!m_engine || m_output->rate() != rate) makeEngine(rate);
        m_startsSoon = true;
    }
    play(strip, std::move(file), m_entries.size() - 1);
    m_state.strips.push_back(std::move(strip));
    m_overviews.request(path);
    return {};
}

// And the output that plays it, preferably at `rate`.
void Player::makeEngine(std::int32_t rate) {
    LiveOutput::News notice;
    if (m_output) {
        m_output->stop();
        m_underrunsBefore += m_output->underruns();
    }
    m_output = std::make_unique<LiveOutput>(m_device, rate, notice, m_systems.open);
    m_engine =
        std::make_unique<Engine>(Engine::Feeding::ByThread, m_output->rate(), Engine::AtEnd::Stays);
    if (!notice.text.empty()) m_problems.push_back(notice.text);
    m_engine->setTempo(m_state.tempo);
    m_engine->setMeter(m_state.beatsPerBar, m_state.beatUnit);
    setOutputGain(m_state.outputGainDecibels);
    setOutputBalance(m_state.outputBalance);
    setDimmed(m_state.dimmed);
    setMono(m_state.mono);
    setMeasuresTruePeaks(m_measuresTruePeaks);
    m_keys.setEngine(m_engine.get(), m_output->rate());
    std::string problem = m_output->start(*m_engine);
    if (!problem.empty()) m_problems.push_back(std::move(problem));
}

void Player::play(StripState& strip, std::unique_ptr<AudioFile> file, std::size_t entry) {
    strip.meter = {};
    strip.meter.id = m_engine->add(std::move(file));
    m_playing.push_back({strip.meter.id, strip.key, entry});
    applySettings(strip);
}

void Player::applySettings(const StripState& strip) {
    const StripId id = strip.meter.id;
    m_engine->setGain(id, amplitude(strip.gainDecibels));
    m_engine->setPan(id, static_cast<float>(strip.pan));
    m_engine->setMuted(id, strip.muted);
    m_engine->setSoloed(id, strip.soloed);
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
    const auto place = strip - m_state.strips.data();
    m_removed.push_back({std::move(*strip), static_cast<std::size_t>(place)});
    m_state.strips.erase(m_state.strips.begin() + place);
}

bool Player::undoRemove() {
    if (m_removed.empty()) return false;
    Removed removed = std::move(m_removed.back());
    m_removed.pop_back();
    std::string problem;
    auto file = open(removed.strip.path, problem);
    if (!file) {
        m_problems.push_back(problem);
        return true;
    }
    play(removed.strip, std::move(file), m_entries.size() - 1);
    const std::size_t place = std::min(removed.place, m_state.strips.size());
    m_state.strips.insert(m_state.strips.begin() + static_cast<std::ptrdiff_t>(place),
                          std::move(removed.strip));
    return true;
}

void Player::move(StripKey key, int place) {
    const StripState* const strip = find(key);
    if (strip == nullptr) return;
    const auto begin = m_state.strips.begin();
    const auto from = begin + (strip - m_state.strips.data());
    const auto last = static_cast<int>(m_state.strips.size()) - 1;
    const auto to = begin + std::clamp(place, 0, last);
    if (from < to) {
        std::rotate(from, from + 1, to + 1);
    } else {
        std::rotate(to, from, from + 1);
    }
}

void Player::setGain(StripKey key, double decibels) {
    StripState* const strip = find(key);
    if (strip == nullptr || std::isnan(decibels)) return;
    strip->gainDecibels = std::clamp(decibels, kSilentDecibels, kMostDecibels);
    applySettings(*strip);
}

void Player::setPan(StripKey key, double pan) {
    StripState* const strip = find(key);
    if (strip == nullptr || std::isnan(pan)) return;
    strip->pan = std::clamp(pan, -1.0, 1.0);
    applySettings(*strip);
}

void Player::setMuted(StripKey key, bool muted) {
    StripState* const strip = find(key);
    if (strip == nullptr) return;
    strip->muted = strip->meter.muted = muted;
    applySettings(*strip);
}

void Player::setSoloed(StripKey key, bool soloed) {
    StripState* const strip = find(key);
    if (strip == nullptr) return;
    strip->soloed = soloed;
    applySettings(*strip);
}

void Player::setPlaying(bool playing) {
    m_startsSoon = false;
    if (m_engine) m_engine->setPlaying(playing);
}

void Player::locate(std::int64_t frame) {
    if (m_engine) m_engine->locate(frame);
}

void Player::setLoop(bool on, std::int64_t begin, std::int64_t end) {
    if (m_engine) m_engine->setLoop(on, begin, end);
}

void Player::setTempo(double beatsPerMinute) {
    Metre metre;
    metre.tempo = static_cast<std::int32_t>(std::lround(m_state.tempo * 1000.0));
    metre.setTempo(beatsPerMinute);
    m_state.tempo = metre.tempo / 1000.0;
    if (m_engine) m_engine->setTempo(m_state.tempo);
}

void Player::setMeter(int beatsPerBar, int beatUnit) {
    Metre metre;
    metre.setMeter(beatsPerBar, beatUnit);
    m_state.beatsPerBar = metre.beatsPerBar;
    m_state.beatUnit = metre.beatUnit;
    if (m_engine) m_engine->setMeter(beatsPerBar, beatUnit);
}

void Player::setOutputGain(double decibels) {
    if (std::isnan(decibels)) return;
    m_state.outputGainDecibels = std::clamp(decibels, kSilentDecibels, kMostDecibels);
    if (m_engine) m_engine->setOutputGain(amplitude(m_state.outputGainDecibels));
}

void Player::setOutputBalance(double balance) {
    if (std::isnan(balance)) return;
    m_state.outputBalance = std::clamp(balance, -1.0, 1.0);
    if (m_engine) m_engine->setOutputBalance(static_cast<float>(m_state.outputBalance));
}

void Player::setDimmed(bool dimmed) {
    m_state.dimmed = dimmed;
    if (m_engine) m_engine->setDimmed(dimmed);
}

void Player::setMono(bool mono) {
    m_state.mono = mono;
    if (m_engine) m_engine->setMono(mono);
}

Keys& Player::keys() {
    constexpr std::int32_t kUsualRate = 48000;
    if (!m_engine) {
        makeEngine(kUsualRate);
        m_isForKeysAlone = true;
    }
    return m_keys;
}

void Player::setMeasuresTruePeaks(bool measures) {
    m_measuresTruePeaks = measures;
    if (m_engine) m_engine->setMeasuresTruePeaks(measures);
}

void Player::askForDevices() {
    if (!m_devices.valid()) m_devices = inBackground(m_systems.list);
}

std::optional<std::vector<DeviceInfo>> Player::takeDevices() {
    if (!isReady(m_devices)) return std::nullopt;
    return m_devices.get();
}

std::string Player::chooseDevice(const std::string& id, std::int32_t rate,
                                 std::uint32_t blockFrames) {
    Device wanted{id, std::max(rate, 0), blockFrames};
    if (!m_engine) {
        m_device = std::move(wanted);
        return {};
    }
    if (rate <= 0 || rate == m_output->rate()) {
        std::string problem = m_output->change(wanted);
        if (problem.empty()) m_device = std::move(wanted);
        return problem;
    }
    m_device = std::move(wanted);
    changeRate(rate);
    return {};
}

// All files are opened once more, for an engine that plays at the other rate.
void Player::changeRate(std::int32_t rate) {
    const bool plays = m_engine->isPlaying();
    const Route route = m_engine->route();
    const std::int64_t position = m_engine->position();
    const std::int32_t rateBefore = m_output->rate();
    const std::vector<Playing> playing = m_playing;
    m_output->stop();
    m_engine->removeAll();
    collect(m_problems);
    m_playing.clear();  // the next engine counts its strips anew
    makeEngine(rate);
    const double ratio = static_cast<double>(m_output->rate()) / rateBefore;
    const auto scaled = [ratio](std::int64_t frame) {
        return std::llround(static_cast<double>(frame) * ratio);
    };
    if (route.loops) m_engine->setLoop(true, scaled(route.loopBegin), scaled(route.loopEnd));
    m_engine->locate(scaled(position));
    for (StripState& strip : m_state.strips) {
        std::string problem;
        auto file = AudioFile::open(strip.path, problem);
        const auto before =
            std::find_if(playing.begin(), playing.end(),
                         [&strip](const Playing& each) { return each.id == strip.meter.id; });
        if (!file) {
            m_problems.push_back(strip.path + ": " + problem);
            strip.meter = {};
            strip.squares.clear();
            continue;
        }
        if (before == playing.end()) m_entries.push_back({strip.path, {}, {}});  // it is back
        play(strip, std::move(file),
             before != playing.end() ? before->entry : m_entries.size() - 1);
    }
    m_engine->setPlaying(plays);
}

std::vector<std::string> Player::tick() {
    std::vector<std::string> problems = std::exchange(m_problems, {});
    if (!m_engine) return problems;
    if (std::exchange(m_startsSoon, false)) m_engine->setPlaying(true);
    collect(problems);
    if (std::string problem = m_keys.tick(); !problem.empty())
        problems.push_back(std::move(problem));
    LiveOutput::News news = m_output->keepRunning();
    if (!news.text.empty()) problems.push_back(std::move(news.text));
    return problems;
}

void Player::collect(std::vector<std::string>& problems) {
    for (StripResult& result : m_engine->collect())
        keepResult(std::move(result), problems);
}

// Of several stretches of a file that were read, the longest is kept.
void Player::keepResult(StripResult&& result, std::vector<std::string>& problems) {
    const auto playing = std::find_if(m_playing.begin(), m_playing.end(),
                                      [&](const Playing& each) { return each.id == result.id; });
    if (playing == m_playing.end()) return;
    if (!result.problem.empty()) problems.push_back(result.path + ": " + result.problem);
    std::optional<StripResult>& kept = m_entries[playing->entry].result;
    if (!kept || kept->framesRead <= result.framesRead) kept = std::move(result);
    m_playing.erase(playing);
}

const ConsoleState& Player::look() {
    m_state.reading = m_progress.lines();
    if (!m_engine) return m_state;
    for (StripMeter& meter : m_engine->meters()) {
        const auto strip =
            std::find_if(m_state.strips.begin(), m_state.strips.end(),
                         [&meter](const StripState& each) { return each.meter.id == meter.id; });
        if (strip == m_state.strips.end()) continue;
        strip->ended = meter.ended;
        strip->heard = m_engine->isHeard(meter.id);
        strip->squares = meter.squares;
        strip->meter = std::move(meter);
    }
    for (StripState& strip : m_state.strips) {
        if (strip.overview != nullptr && strip.overview->isComplete) continue;
        if (auto known = m_overviews.find(strip.path)) strip.overview = std::move(known);
    }
    const OutputLevels levels = m_engine->takeOutputLevels();
    m_state.outputPeaks = levels.peaks;
    m_state.outputSquares = levels.squares;
    m_state.playing = m_engine->isPlaying() || m_startsSoon;
    m_state.position = m_engine->position();
    m_state.place = m_engine->musicalPosition();
    m_state.rate = m_output->rate();
    m_state.seconds = static_cast<double>(m_state.position) / m_state.rate;
    const Route& route = m_engine->route();
    m_state.looping = route.loops;
    m_state.loopBegin = route.loopBegin;
    m_state.loopEnd = route.loopEnd;
    m_state.outputName = m_output->name();
    m_state.blockFrames = m_output->blockFrames();
    m_state.deviceUnderruns = m_underrunsBefore + m_output->underruns();
    return m_state;
}

std::vector<ReportEntry> Player::finish() {
    if (m_engine) {
        m_output->stop();
        m_engine->removeAll();
        std::vector<std::string> problems;
        collect(problems);
        for (ReportEntry& entry : m_entries)
            entry.deviceUnderruns = m_underrunsBefore + m_output->underruns();
    }
    return std::exchange(m_entries, {});
}

}  // namespace veltra::console
