# SPDX-License-Identifier: MIT
# A kernel file is built with wider instructions than the rest; the processor is asked before it is
# called. The file stays out, and the macro with it, where the compiler or the architecture has
# no such instructions.
include(CheckCXXSourceCompiles)

#   veltra_kernel(kernels/crc_pclmul FLAGS -mpclmul -msse4.1)
#
# appends the file to KERNEL_SOURCES and VELTRA_KERNEL_CRC_PCLMUL to KERNEL_DEFINITIONS.
function(veltra_kernel path)
    cmake_parse_arguments(KERNEL "" "" "FLAGS" ${ARGN})
    get_filename_component(name "${path}" NAME)
    string(TOUPPER "VELTRA_KERNEL_${name}" macro)
    list(JOIN KERNEL_FLAGS " " CMAKE_REQUIRED_FLAGS)
    string(APPEND CMAKE_REQUIRED_FLAGS " -Werror")
    check_cxx_source_compiles("#include <immintrin.h>\nint main() { return 0; }" ${macro}_COMPILES)
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
