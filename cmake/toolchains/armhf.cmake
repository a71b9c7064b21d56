# SPDX-License-Identifier: MIT
# 32-bit ARM under qemu. char is unsigned here.
set(host armhf)
set(processor armv7l)
set(triplet arm-linux-gnueabihf)
set(emulator qemu-arm)
include("${CMAKE_CURRENT_LIST_DIR}/with_packages.cmake")
