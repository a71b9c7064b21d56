// SPDX-License-Identifier: MIT
// libbacktrace keeps its memory apart from malloc, and never learns of modules that are loaded
// after it has begun: the list of modules is compared at each use, and a longer one is read anew.
// What it has read can never be given back, so that is done a few times in the life of a process.
//
// In a forked child no module list is asked for and nothing is read: both need the dynamic linker's
// lock, which may be held for ever by a thread that the child does not have.
#include "veltra/base/adaptive_lock.h"
#include "veltra/platform/linux/symbol_tables.h"

#include <atomic>
#include <mutex>

#include <backtrace.h>
#include <link.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr int kMostReadings = 8;

const pid_t loadedIn = ::getpid();

constinit AdaptiveLock lock;  // over `modules` and `readings`; never taken in a forked child
constinit unsigned long long modules = 0;
constinit int readings = 0;
constinit std::atomic<backtrace_state*> newest{nullptr};

void ignore(void* /*data*/, const char* /*message*/, int /*error*/) {}

// How many modules have been loaded so far, also those that are gone.
unsigned long long modulesLoaded() noexcept {
    unsigned long long count = 0;
    ::dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t size, void* data) {
            if (size >= offsetof(dl_phdr_info, dlpi_adds) + sizeof info->dlpi_adds)
                *static_cast<unsigned long long*>(data) = info->dlpi_adds;
            return 1;
        },
        &count);
    return count;
}

// The library reads when it is first asked for an address.
backtrace_state* read() noexcept {
    backtrace_state* const state = ::backtrace_create_state(nullptr, 1, ignore, nullptr);
    if (state != nullptr)
        ::backtrace_pcinfo(
            state, reinterpret_cast<std::uintptr_t>(&ignore),
            [](void*, std::uintptr_t, const char*, int, const char*) { return 1; }, ignore,
            nullptr);
    return state;
}

backtrace_state* currentState() noexcept {
    if (::getpid() == loadedIn) {
        const unsigned long long loaded = modulesLoaded();
        const std::lock_guard guard(lock);
        if (readings < kMostReadings && (readings == 0 || modules != loaded)) {
            if (backtrace_state* const state = read()) {
                newest.store(state, std::memory_order_release);  // with the load below
                modules = loaded;
                ++readings;
            }
        }
    }
    return newest.load(std::memory_order_acquire);
}

}  // namespace

void prepareSymbolTables() noexcept {
    currentState();
}

// The symbol table has whole names also where the debug information has bare ones. Of an address in
// code that was inlined, the last answer is the function that holds it and the line that it is at.
void nameFromTables(std::uintptr_t address, SymbolName& name) noexcept {
    backtrace_state* const state = currentState();
    if (state == nullptr) return;
    ::backtrace_syminfo(
        state, address,
        [](void* data, std::uintptr_t, const char* symbol, std::uintptr_t, std::uintptr_t) {
            if (symbol != nullptr) setFunction(*static_cast<SymbolName*>(data), symbol);
        },
        ignore, &name);
    struct Place {
        const char* file = nullptr;
        int line = 0;
        const char* function = nullptr;
    } place;
    ::backtrace_pcinfo(
        state, address,
        [](void* data, std::uintptr_t, const char* file, int line, const char* function) {
            if (file != nullptr) *static_cast<Place*>(data) = {file, line, function};
            return 0;
        },
        ignore, &place);
    if (place.file != nullptr) setText(name.file, place.file);
    if (name.function[0] == '\0' && place.function != nullptr) setFunction(name, place.function);
    name.line = place.line;
}

}  // namespace veltra
