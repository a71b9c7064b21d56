// SPDX-License-Identifier: MIT
// What a port to an operating system consists of: everything that a folder beside linux/ defines,
// and nothing else. docs/platform.md says what each part must keep to.
//
// These headers declare what a port defines, all of it unless a line says otherwise.
#pragma once

#include "veltra/platform/alert.h"            // platformAlertPresenter()
#include "veltra/platform/allocation_zone.h"  // process(), entries(), coverage(), mallocOrigin()
#include "veltra/platform/c_locale.h"
#include "veltra/platform/clock.h"            // platformClocks()
#include "veltra/platform/color_transform.h"  // makeColorTransform(), in lcms/ or none/
#include "veltra/platform/compression.h"      // platformCompression(), in zlib/ or none/
#include "veltra/platform/exception_type.h"
#include "veltra/platform/file_system.h"  // platformFileSystem()
#include "veltra/platform/fork_generation.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/keyboard_layout.h"    // platformKeyboardLayout()
#include "veltra/platform/local_time.h"         // platformLocalTime()
#include "veltra/platform/loudness_analysis.h"  // makeLoudnessAnalysis(), in ebur128/ or none/
#include "veltra/platform/machine_lines.h"
#include "veltra/platform/memory_system.h"  // platformMemorySystem(), MemoryFactsReader
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/optical_drives.h"      // platformOpticalDrives()
#include "veltra/platform/poll_run_loop.h"       // where the system has descriptors to wait on
#include "veltra/platform/preferences.h"         // the two functions below
#include "veltra/platform/process.h"             // platformProcess(), environmentVariable()
#include "veltra/platform/processor_features.h"  // platformProcessorFeatures()
#include "veltra/platform/run_loop.h"            // makePlatformRunLoop()
#include "veltra/platform/stack_walk.h"
#include "veltra/platform/standard_error.h"  // platformStandardError()
#include "veltra/platform/symbol_names.h"
#include "veltra/platform/symboliser.h"      // platformSymboliser()
#include "veltra/platform/system_log.h"      // platformSystemLog()
#include "veltra/platform/system_queries.h"  // platformSystemQueries()
#include "veltra/platform/text_services.h"   // platformTextServices(), in icu/ or none/
#include "veltra/platform/thread_end.h"
#include "veltra/platform/uri_syntax.h"  // in xml/ or none/
#include "veltra/platform/volumes.h"     // platformVolumes()
#include "veltra/platform/work_memory.h"
#include "veltra/platform/zone_code.h"  // isZoneCode()

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// What serves while nothing is installed. Each returns the same object every time; it lives until
// the process ends, also for those who ask while it ends.
const Clocks& platformClocks() noexcept;
const Compression& platformCompression() noexcept;        // none/ has one that can do nothing
const KeyboardLayout& platformKeyboardLayout() noexcept;  // none/ has one that knows no key
const LocalTime& platformLocalTime() noexcept;
const Process& platformProcess() noexcept;
const SystemQueries& platformSystemQueries() noexcept;
const TextServices& platformTextServices() noexcept;  // none/ has one without a converter
AlertPresenter& platformAlertPresenter() noexcept;
FileSystem& platformFileSystem() noexcept;
MemorySystem& platformMemorySystem() noexcept;
OpticalDrives& platformOpticalDrives() noexcept;
Preferences& platformPreferences() noexcept;
StandardError& platformStandardError() noexcept;
Symboliser& platformSymboliser() noexcept;
SystemLog& platformSystemLog() noexcept;
Volumes& platformVolumes() noexcept;

// As Preferences::setApplicationName().
bool setPlatformApplicationName(std::string_view name) noexcept;

// Asks processor and system; called once.
ProcessorFeatures platformProcessorFeatures() noexcept;

// What people call the operating system and its version; nothing when one of the three is unknown.
// Throws std::bad_alloc.
struct SystemVersion {
    std::string product, version, build;  // none is empty
};
std::optional<SystemVersion> platformSystemVersion();

// The files of the running program and of this library (in a static build: of the program), without
// links on the way; empty when they cannot be told. The folders where the system keeps libraries.
// These throw std::bad_alloc.
std::string platformExecutablePath();
std::string platformLibraryPath();
std::vector<std::string> platformLibraryFolders();

// The loop of a thread that has set none; null when memory is out.
std::unique_ptr<RunLoop> makePlatformRunLoop() noexcept;

}  // namespace veltra
