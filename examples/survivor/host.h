// SPDX-License-Identifier: MIT
// A sampler that is driven out of memory, act by act, and lives on. What it does about memory is
// in the functions that the services call.
#pragma once

#include "copy_cache.h"
#include "document.h"
#include "options.h"
#include "report.h"
#include "veltra/base/string_object.h"
#include "veltra/memory/memory_pressure.h"

namespace veltra::survivor {

class Host {
public:
    // Sets the preferences and limits the address space, unless pressure alone is to tell when
    // memory ends. Throws when it cannot.
    explicit Host(const Options& options);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host();

    // Whether the document was saved whenever it had to be, and is intact.
    bool run();

private:
    // What the services call.
    static unsigned long memoryIsLow(void* host, std::uint8_t level, unsigned long size);
    static void someoneMakesRoom(void* host, const VLString* name, const void* object);
    static void reserveChanged(void* host);
    static int allocationFailed();

    // One of the two at a time: a check point tries to allocate, and where the reserve is entered
    // a try that fails costs the reserve before anybody is asked for room.
    void startCenter();
    void stopCenter() noexcept;
    void enterReserve();

    void limitAddressSpace() const;
    void relievePressure() noexcept;

    // The acts.
    void load();
    void play();
    void record();
    void askTooMuch();
    void runPlugIn();
    void finish();

    std::size_t processUntilMemoryEnds();

    std::size_t playAll(std::size_t keys) noexcept;
    bool recordTake() noexcept;
    void saveAndUnload() noexcept;
    void saveInEmergency() noexcept;
    bool mayGoOn() noexcept;

    static Host* s_host;  // the guarded allocator's handler gets no context

    const Options m_options;
    MemoryPressure m_pressure;
    Document m_document;
    std::vector<Recording> m_recordings;
    CopyCache m_cache;
    Report m_report;
    std::size_t m_saves = 0;
    std::size_t m_posts = 0;  // of kLowMemoryNotification
    bool m_isSaved = true;    // the document, each time
    bool m_isReserveWhole = true;
    bool m_wasReserveGivenUp = false;
};

}  // namespace veltra::survivor
