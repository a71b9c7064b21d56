# SPDX-License-Identifier: MIT
# 64-bit big-endian with every library, under qemu. char is unsigned here.
get_filename_component(sysroot "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/s390x" ABSOLUTE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_SYSROOT "${sysroot}")
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,-rpath-link,${sysroot}/usr/lib/s390x-linux-gnu:${sysroot}/lib/s390x-linux-gnu")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L "${sysroot}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
