# SPDX-License-Identifier: MIT
# 32-bit little-endian with every library; x86-64 runs it, through the sysroot's own loader.
get_filename_component(sysroot "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/i386" ABSOLUTE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i386)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_SYSROOT "${sysroot}")
set(libraries "${sysroot}/usr/lib/i386-linux-gnu:${sysroot}/lib/i386-linux-gnu")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${libraries}")
set(CMAKE_CROSSCOMPILING_EMULATOR
    "${sysroot}/lib/i386-linux-gnu/ld-linux.so.2" --library-path "${libraries}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
