# SPDX-License-Identifier: MIT
# 32-bit little-endian; x86-64 runs it, with the sysroot's own loader.
set(host i386)
set(processor i386)
set(triplet i386-linux-gnu)
include("${CMAKE_CURRENT_LIST_DIR}/with_packages.cmake")
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
unset(CMAKE_CROSSCOMPILING_EMULATOR)
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--dynamic-linker,${sysroot}/lib/${triplet}/ld-linux.so.2"
    " -Wl,-rpath,${libraries} -Wl,--disable-new-dtags")  # also for libraries that libraries need
