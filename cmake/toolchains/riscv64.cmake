# SPDX-License-Identifier: MIT
# 64-bit RISC-V under qemu. char is unsigned here.
set(host riscv64)
set(processor riscv64)
set(triplet riscv64-linux-gnu)
set(emulator qemu-riscv64)
include("${CMAKE_CURRENT_LIST_DIR}/without_packages.cmake")
