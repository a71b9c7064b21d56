# SPDX-License-Identifier: MIT
# 32-bit big-endian under qemu: QEMU_CPU in the environment says which processor it plays.
set(host powerpc)
set(processor powerpc)
set(triplet powerpc-linux-gnu)
set(emulator qemu-ppc)
include("${CMAKE_CURRENT_LIST_DIR}/without_packages.cmake")
