# SPDX-License-Identifier: MIT
# A kernel file is built with wider instructions than the rest; the processor is asked before it is
# called. The file stays out, and the macro with it, where the compiler or the architecture has
# no such instructions.
include(CheckCXXSourceCompiles)

# What only compiles for an architecture that the kernels of that name are written for.
set(veltra_probe_x86 [[
#include <immintrin.h>
int main() { return 0; }
]])
set(veltra_probe_arm64 [[
#ifdef __ARM_BIG_ENDIAN
#error the kernels read registers in little-endian order
#endif
#include <arm_neon.h>
int main() { return vaddvq_u8(vdupq_n_u8(0)); }
]])

#   veltra_kernel(kernels/crc_pclmul FOR x86 FLAGS -mpclmul -msse4.1)
#
# appends the file to KERNEL_SOURCES and VELTRA_KERNEL_CRC_PCLMUL to KERNEL_DEFINITIONS.
function(veltra_kernel path)
    cmake_parse_arguments(KERNEL "" "FOR" "FLAGS" ${ARGN})
    get_filename_component(name "${path}" NAME)
    string(TOUPPER "VELTRA_KERNEL_${name}" macro)
    list(JOIN KERNEL_FLAGS " " CMAKE_REQUIRED_FLAGS)
    string(APPEND CMAKE_REQUIRED_FLAGS " -Werror")
    check_cxx_source_compiles("${veltra_probe_${KERNEL_FOR}}" ${macro}_COMPILES)
    if(${macro}_COMPILES)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # The undefined registers of GCC 12's own headers set this off.
            list(APPEND KERNEL_FLAGS -Wno-uninitialized)
        endif()
        set_source_files_properties(${path}.cpp PROPERTIES COMPILE_OPTIONS "${KERNEL_FLAGS}" SKIP_PRECOMPILE_HEADERS ON)
        set(KERNEL_SOURCES ${KERNEL_SOURCES} ${path}.cpp PARENT_SCOPE)
        set(KERNEL_DEFINITIONS ${KERNEL_DEFINITIONS} ${macro} PARENT_SCOPE)
    endif()
endfunction()
