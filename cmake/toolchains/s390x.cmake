# SPDX-License-Identifier: MIT
# 64-bit big-endian under qemu. char is unsigned here.
set(host s390x)
set(processor s390x)
set(triplet s390x-linux-gnu)
set(emulator qemu-s390x)
include("${CMAKE_CURRENT_LIST_DIR}/with_packages.cmake")
