# SPDX-License-Identifier: MIT
# The libraries that do one job for us. A job whose library is not found is left out, as if its
# option were off.
#
# VELTRA_LIBRARIES is what the library links, VELTRA_LINK_NAMES the same for a linker's command line.
set(VELTRA_LIBRARIES "")
set(VELTRA_LINK_NAMES "")
find_package(PkgConfig QUIET)

# veltra_find_library(OPTION MODULE missing): looks for pkg-config's MODULE. Its folders of headers
# are VELTRA_<OPTION>_INCLUDE_DIRS; `missing` says what a build without it lacks.
macro(veltra_find_library option module missing)
    if(VELTRA_${option})
        if(PKG_CONFIG_FOUND)
            pkg_check_modules(VELTRA_${option} QUIET ${module})
        endif()
        if(VELTRA_${option}_FOUND)
            list(APPEND VELTRA_LIBRARIES ${VELTRA_${option}_LIBRARIES})
            list(TRANSFORM VELTRA_${option}_LIBRARIES PREPEND "-l" OUTPUT_VARIABLE veltra_names)
            list(APPEND VELTRA_LINK_NAMES ${veltra_names})
        else()
            message(STATUS "${module} not found: ${missing}")
            set(VELTRA_${option} OFF)
        endif()
    endif()
endmacro()

if(VELTRA_ICU)
    find_package(ICU QUIET COMPONENTS i18n uc)
    if(ICU_FOUND)
        list(APPEND VELTRA_LIBRARIES ICU::i18n ICU::uc)
        list(APPEND VELTRA_LINK_NAMES -licui18n -licuuc -licudata)
    else()
        message(STATUS "ICU not found: there are no legacy encoding, patterns and host names")
        set(VELTRA_ICU OFF)
    endif()
endif()

veltra_find_library(XKB xkbcommon "there is no keyboard layout")
set(VELTRA_XKB_X11 OFF)
if(VELTRA_XKB)
    # Only its header is needed; the library is loaded when there is a display.
    pkg_check_modules(XKBCOMMON_X11 QUIET xkbcommon-x11)
    set(VELTRA_XKB_X11 ${XKBCOMMON_X11_FOUND})
endif()
veltra_find_library(ZLIB zlib "data cannot be compressed")
veltra_find_library(XML libxml-2.0 "no text looks like a URI")
veltra_find_library(UDEV libudev "optical drives are read from the system's folders")
veltra_find_library(LCMS lcms2 "only the built-in colour spaces exist")
veltra_find_library(EBUR128 libebur128 "there is no loudness and no true peak")

# Where the processor has no atomic bytes or no atomic words of 64 bits, the compiler's own library
# makes them.
include(CheckCXXSourceCompiles)
check_cxx_source_compiles("
    #include <atomic>
    #include <cstdint>
    std::atomic<std::uint64_t> word;
    std::atomic<bool> byte;
    int main() { return byte.exchange(true) ? 0 : static_cast<int>(word.exchange(1)); }
" VELTRA_HAS_ALL_ATOMICS)
if(NOT VELTRA_HAS_ALL_ATOMICS)
    list(APPEND VELTRA_LIBRARIES atomic)
    list(APPEND VELTRA_LINK_NAMES -latomic)
endif()

if(VELTRA_BACKTRACE)
    # g++ brings it along; clang and its tools find the library there, but not its header.
    set(VELTRA_BACKTRACE_FLAGS "")
    find_program(VELTRA_GXX NAMES g++)
    if(VELTRA_GXX AND NOT CMAKE_CROSSCOMPILING)
        execute_process(COMMAND "${VELTRA_GXX}" -print-file-name=include
            OUTPUT_VARIABLE gxx_include OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(VELTRA_BACKTRACE_FLAGS -idirafter "${gxx_include}")
    endif()
    set(CMAKE_REQUIRED_LIBRARIES backtrace)
    list(JOIN VELTRA_BACKTRACE_FLAGS " " CMAKE_REQUIRED_FLAGS)
    check_cxx_source_compiles("
        #include <backtrace.h>
        #include <backtrace-supported.h>
        #if !BACKTRACE_SUPPORTED || BACKTRACE_USES_MALLOC || !BACKTRACE_SUPPORTS_THREADS
        #error it would allocate where nobody may, or know nothing
        #endif
        int main() { return backtrace_create_state(nullptr, 1, nullptr, nullptr) == nullptr; }
    " VELTRA_BACKTRACE_WORKS)
    unset(CMAKE_REQUIRED_LIBRARIES)
    unset(CMAKE_REQUIRED_FLAGS)
    if(VELTRA_BACKTRACE_WORKS)
        list(APPEND VELTRA_LIBRARIES backtrace)
        list(APPEND VELTRA_LINK_NAMES -lbacktrace)
    else()
        message(STATUS "libbacktrace not found: reports name exported functions only")
        set(VELTRA_BACKTRACE OFF)
    endif()
endif()
