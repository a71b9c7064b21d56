// SPDX-License-Identifier: MIT
// A frame of C between those of C++.
void CALL_FROM_C(void (*function)(void*), void* context);

void CALL_FROM_C(void (*function)(void*), void* context) {
    function(context);
    __asm__ volatile("" ::: "memory");  // the call is no jump
}
