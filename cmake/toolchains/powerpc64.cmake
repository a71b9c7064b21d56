# SPDX-License-Identifier: MIT
# 64-bit big-endian under qemu: QEMU_CPU in the environment says which processor it plays.
set(host powerpc64)
set(processor powerpc64)
set(triplet powerpc64-linux-gnu)
set(emulator qemu-ppc64)
include("${CMAKE_CURRENT_LIST_DIR}/without_packages.cmake")
