# SPDX-License-Identifier: MIT
# 64-bit ARM with every library, under qemu. char is unsigned here.
get_filename_component(sysroot "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/arm64" ABSOLUTE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_SYSROOT "${sysroot}")
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,-rpath-link,${sysroot}/usr/lib/aarch64-linux-gnu:${sysroot}/lib/aarch64-linux-gnu")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L "${sysroot}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
