# SPDX-License-Identifier: MIT
# 64-bit big-endian with the compiler's own libraries alone, under qemu: QEMU_CPU in the environment
# says which processor it plays.
get_filename_component(sysroot "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/powerpc64" ABSOLUTE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc64)
set(CMAKE_C_COMPILER powerpc64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc64 -L /usr/powerpc64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH "${sysroot}" /usr/powerpc64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
