# SPDX-License-Identifier: MIT
# 64-bit ARM under qemu. char is unsigned here.
set(host arm64)
set(processor aarch64)
set(triplet aarch64-linux-gnu)
set(emulator qemu-aarch64)
include("${CMAKE_CURRENT_LIST_DIR}/with_packages.cmake")
