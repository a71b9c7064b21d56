// SPDX-License-Identifier: MIT
#include "host.h"

#include "plug_in.h"
#include "veltra/memory/low_memory_notification_center.h"
#include "veltra/memory/memory_reserve.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/notification_center.h"
#include "veltra/platform/preferences.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <malloc.h>

namespace veltra::survivor {

namespace {

using Center = LowMemoryNotificationCenter;

constexpr std::size_t kMebibyte = 1'048'576;

void setDefault(std::string_view key, const PropertyValue& value) {
    Preferences& preferences = Preferences::current();
    if (preferences.value(key).isNull()) preferences.setValue(key, value);
}

// Sizes for a machine of half a gigabyte; a user's own stay.
void setDefaults() {
    setDefault("LowMemoryReserve", 32 * kMebibyte);
    setDefault("MinAvailMemoryThreshold", 16 * kMebibyte);
    setDefault("MemoryReserve", PropertyValue::Dictionary{
                                    {"BlockSize", 64},        // MiB
                                    {"FinalBlockSize", 16},   // MiB
                                    {"MaxSensibleSize", 16},  // MiB
                                });
    Preferences::current().synchronise();
}

// Makes every free of a block of audio give its memory back to the system, where it serves any
// other size. The C library otherwise keeps blocks up to 32 MiB once it has seen one freed.
void returnFreedBlocks() noexcept {
    constexpr int kLargeBlock = 131'072;
    ::mallopt(M_MMAP_THRESHOLD, kLargeBlock);  // NOLINT(concurrency-mt-unsafe): one thread
}

// The host takes `room` bytes at most: what is left when it has them is nothing to it.
MemoryPressureMarks marksFor(std::uint64_t room) noexcept {
    const std::uint64_t there = MemoryFactsReader().read().room().value_or(room);
    const std::uint64_t taken = std::min(room, there);
    const std::uint64_t others = there - taken;
    return {.room = {others + taken / 8, others + taken / 16, others + taken / 32}};
}

void mix(const Recording& recording, float* take, std::size_t start) noexcept {
    const std::size_t frames = std::min(recording.frames, Document::kTakeFrames - start);
    for (std::size_t channel = 0; channel < 2; ++channel) {
        const float* from = recording.channel(channel);
        float* to = take + channel * Document::kTakeFrames + start;
        for (std::size_t frame = 0; frame < frames; ++frame)
            to[frame] += 0.25F * from[frame];
    }
}

}  // namespace

constinit Host* Host::s_host = nullptr;

Host::Host(const Options& options)
    : m_options(options),
      m_pressure(marksFor(options.roomMebibytes * kMebibyte)),
      m_document(options.document),
      m_cache(options.files.size()) {
    m_recordings.reserve(options.files.size());
    setDefaults();
    returnFreedBlocks();
    if (!options.isPressureAlone) limitAddressSpace();
    s_host = this;
    Mem_InitModule();
    Mem_SetException(kMemExceptionCall, allocationFailed);
}

Host::~Host() {
    stopCenter();
    Mem_SetException(kMemExceptionNull, nullptr);
    Mem_TermModule();
    s_host = nullptr;
}

bool Host::run() {
    startCenter();
    load();
    play();
    record();
    stopCenter();

    enterReserve();
    askTooMuch();
    runPlugIn();
    QKMemoryReserveExit();

    finish();
    return m_isSaved;
}

void Host::startCenter() {
    if (Center::InitializeLMNotificationCenter() == 0)
        throw std::runtime_error("no memory for the reserve, or the preferences do not want it");
    Center::AddLMObserver(memoryIsLow, this);
    NotificationCenter::local().addObserver(this, someoneMakesRoom, kLowMemoryNotification,
                                            nullptr);
}

void Host::stopCenter() noexcept {
    NotificationCenter::local().removeObserver(this);
    Center::RemoveLMObserver(memoryIsLow, this);
    Center::ShutdownLMNotificationCenter();
}

// Then an allocation fails before the system ends the process for want of pages.
void Host::limitAddressSpace() const {
    constexpr std::uint64_t kMargin = 48 * kMebibyte;  // stacks, and what others in the group take
    if (limitAddressSpaceToMemory(kMargin, m_options.roomMebibytes * kMebibyte) == 0)
        throw std::runtime_error("the system does not limit the address space");
}

// Before memory is taken that somebody could make room for. (A host with an event loop rather does
// so when the pressure's descriptor is readable.)
void Host::relievePressure() noexcept {
    if (m_options.isPressureAlone) m_pressure.relieve();
}

// The reserve stands in front of allocations that fail: now there must be some.
void Host::enterReserve() {
    limitAddressSpace();
    std::free(QKMemoryReserveEnter(reserveChanged, this));
}

// The center asks for room, in the order of urgency.
unsigned long Host::memoryIsLow(void* host, std::uint8_t level, unsigned long /*size*/) {
    Host& self = *static_cast<Host*>(host);
    switch (level) {
        case 0:
            self.m_report.note(Event::CenterLevel, level, self.m_cache.dropOlderHalf());
            return 0;
        case 1:
            self.m_report.note(Event::CenterLevel, level, self.m_cache.dropAll());
            return 0;
        case 2:
            self.m_report.note(Event::CenterLevel, level, self.m_cache.dropAll());
            self.saveInEmergency();
            return 0;
        default:  // 10: the reserve is gone, and it was not enough
            return self.m_isSaved ? 0 : 1;
    }
}

// Who knows no levels and no sizes observes the notification.
void Host::someoneMakesRoom(void* host, const VLString* /*name*/, const void* /*object*/) {
    ++static_cast<Host*>(host)->m_posts;
}

// Runs in the middle of an allocation or deallocation: it takes a note, no more.
void Host::reserveChanged(void* host) {
    static_cast<Host*>(host)->m_report.note(Event::ReserveLevel,
                                            QKMemoryReserveGetLowMemoryLevel());
}

// The heap has refused a block, whatever the reserve gave up for it.
int Host::allocationFailed() {
    const Dropped dropped = s_host->m_cache.dropAll();
    s_host->m_report.note(dropped.count > 0 ? Event::HandlerRetry : Event::HandlerGaveUp, 0,
                          dropped);
    return dropped.count > 0 ? kMemExceptionRetry : kMemExceptionNull;
}

// Inside an observer nobody else can be asked for room: what a check point cannot find there, it
// takes from the center's reserve, as long as a critical operation is on.
void Host::saveInEmergency() noexcept {
    Center::EnterCriticalOperation();
    Center::CheckPoint(Document::kSavingBytes);
    m_wasReserveGivenUp |= !Center::EnterCriticalOperation();  // whether it is still in place
    saveAndUnload();
    Center::LeaveCriticalOperation();
    m_isReserveWhole = Center::LeaveCriticalOperation();
}

void Host::saveAndUnload() noexcept {
    const bool isSaved = m_document.save();
    m_isSaved = m_isSaved && isSaved;
    ++m_saves;
    m_report.note(Event::Saving, isSaved ? 1 : 0, m_document.unloadStored());
}

void Host::load() {
    std::size_t bytes = 0;
    std::string problem;
    for (const std::string& path : m_options.files) {
        Recording recording = loadRecording(path, problem);
        if (recording.samples == nullptr) {
            std::fprintf(stderr, "survivor: %s: %s\n", path.c_str(), problem.c_str());
            continue;
        }
        bytes += recording.bytes();
        m_recordings.push_back(std::move(recording));
    }
    if (m_recordings.empty()) throw std::runtime_error("nothing could be loaded");
    m_report.endAct("load", "%zu of %zu recordings, %zu MiB", m_recordings.size(),
                    m_options.files.size(), bytes / kMebibyte);
}

// Every key of every recording: more than there is room for.
void Host::play() {
    const std::size_t played = playAll(CopyCache::kKeys);
    m_report.endAct("play", "%zu of %zu notes played", played,
                    CopyCache::kKeys * m_recordings.size());
}

std::size_t Host::playAll(std::size_t keys) noexcept {
    std::size_t played = 0;
    for (std::size_t key = 0; key < keys; ++key)
        for (std::size_t index = 0; index < m_recordings.size(); ++index) {
            relievePressure();
            if (m_cache.copy(m_recordings[index], index, key) != nullptr) ++played;
        }
    return played;
}

// Takes must not be dropped, so this goes on until the document has to save itself.
void Host::record() {
    const std::size_t before = m_saves;
    while (m_saves == before && recordTake()) {
    }
    m_isSaved = m_isSaved && m_saves > before;
    m_report.endAct("record", "%zu takes; the center's reserve was %s and is %s; %zu posts",
                    m_document.takeCount(), m_wasReserveGivenUp ? "given up" : "kept",
                    m_isReserveWhole ? "whole" : "GONE", m_posts);
}

bool Host::recordTake() noexcept {
    constexpr std::size_t kNotes = 16;
    constexpr std::size_t kSamples = 2 * Document::kTakeFrames;
    relievePressure();
    Center::CheckPoint(kSamples * sizeof(float));
    Samples take = takeBlock<float>(kSamples);
    if (take == nullptr) return false;
    std::fill_n(take.get(), kSamples, 0.0F);
    for (std::size_t note = 0; note < kNotes; ++note) {
        const std::size_t number = m_document.takeCount() * kNotes + note;
        const std::size_t index = number * 7 % m_recordings.size();
        const Recording* copy =
            m_cache.copy(m_recordings[index], index, number * 5 % CopyCache::kKeys);
        if (copy != nullptr) mix(*copy, take.get(), note * Document::kTakeFrames / kNotes);
    }
    return m_document.add(std::move(take));
}

// A request that nothing can satisfy costs the copies and the main reserve, not the final block.
void Host::askTooMuch() {
    playAll(1);
    const bool isRefused = takeBlock<char>(m_options.roomMebibytes * kMebibyte) == nullptr;
    QKMemoryReserveTryReserveReallocation();
    const bool isRecording = recordTake();  // and with the first block that it frees ...
    m_report.endAct("ask too much", "%s; %s", isRefused ? "refused" : "granted",
                    isRecording ? "recording goes on" : "recording is OVER");
}

void Host::runPlugIn() {
    playAll(1);
    QKMemoryReserveDidLowMemoryLevelChange(1);  // what came before is done with
    std::size_t blocks = 0;
    try {
        blocks = processUntilMemoryEnds();
    } catch (const std::bad_alloc&) {
        // Where the reserve sees nothing, this is the first that the host hears of it. The plug-in
        // is gone by now, and its memory is back.
        saveAndUnload();
    }
    m_report.endAct("plug-in", blocks > 0 ? "stopped in time" : "memory was out");
}

std::size_t Host::processUntilMemoryEnds() {
    PlugIn plugIn;
    std::size_t blocks = 0;
    do {
        plugIn.process();
        ++blocks;
    } while (mayGoOn());
    saveAndUnload();  // in the room of the final block
    return blocks;
}

// Asked between two blocks of audio, where there is time to do something about the level.
bool Host::mayGoOn() noexcept {
    switch (QKMemoryReserveDidLowMemoryLevelChange(1)) {
        case 1:
            m_report.note(Event::HostDrop, 0, m_cache.dropAll());
            return true;
        case 2:
            return false;
        default:
            return true;
    }
}

void Host::finish() {
    const bool isRecording = recordTake();
    saveAndUnload();
    const bool isIntact = m_document.isIntact();
    m_isSaved = m_isSaved && isRecording && isIntact;
    m_report.endAct("finish", "reserve level %d; %zu takes, %s", QKMemoryReserveGetLowMemoryLevel(),
                    m_document.takeCount(), isIntact ? "intact" : "DAMAGED");
}

}  // namespace veltra::survivor
