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
#include <bit>
#include <mutex>

#include <backtrace.h>
#include <dlfcn.h>
#include <link.h>
#include <sys/auxv.h>
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

// The start of the module that holds `address`.
const void* moduleOf(std::uintptr_t address) noexcept {
    Dl_info info{};
    return ::dladdr(std::bit_cast<const void*>(address), &info) != 0 ? info.dli_fbase : nullptr;
}

// What is never unloaded: this library, and the program.
bool staysLoaded(std::uintptr_t address) noexcept {
    const void* const module = moduleOf(address);
    return module != nullptr && (module == moduleOf(reinterpret_cast<std::uintptr_t>(&ignore)) ||
                                 module == moduleOf(::getauxval(AT_ENTRY)));
}

// The tables for `address`; null when they may speak of another module that was in its place.
backtrace_state* stateFor(std::uintptr_t address) noexcept {
    bool isOutdated = false;
    if (::getpid() == loadedIn) {
        const unsigned long long loaded = modulesLoaded();
        const std::lock_guard guard(lock);
        isOutdated = readings == 0 || modules < loaded;
        if (isOutdated && readings < kMostReadings) {
            if (backtrace_state* const state = read()) {
                newest.store(state, std::memory_order_release);  // with the load below
                modules = loaded;
                ++readings;
                isOutdated = false;
            }
        }
    }
    if (isOutdated && !staysLoaded(address)) return nullptr;
    return newest.load(std::memory_order_acquire);
}

}  // namespace

void prepareSymbolTables() noexcept {
    stateFor(0);
}

// The symbol table has whole names also where the debug information has bare ones. Of an address in
// code that was inlined, the last answer is the function that holds it and the line that it is at.
void nameFromTables(std::uintptr_t address, SymbolName& name) noexcept {
    backtrace_state* const state = stateFor(address);
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
