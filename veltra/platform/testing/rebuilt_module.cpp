// SPDX-License-Identifier: MIT
// A module that a test loads, unloads and loads again as it was built another time: the same
// function at the same address, with a frame of another size (ROOM bytes and a little).

extern "C" [[gnu::visibility("default")]] void callThrough(void (*body)()) {
    char room[ROOM];
    asm volatile("" : : "r"(room) : "memory");
    body();
    asm volatile("" : : "r"(room) : "memory");
}
