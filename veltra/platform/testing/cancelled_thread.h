// SPDX-License-Identifier: MIT
// A thread that is to be cancelled at the next point of cancellation.
#pragma once

#include <thread>

#include <pthread.h>

namespace veltra::testing {

// Whether `call` returns on such a thread, and leaves it to be cancelled afterwards.
template <typename Call>
bool isCancelledOnlyAfter(Call call) {
    int state = PTHREAD_CANCEL_DISABLE;
    std::thread([&] {
        ::pthread_cancel(::pthread_self());
        call();
        ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    }).join();
    return state == PTHREAD_CANCEL_ENABLE;
}

}  // namespace veltra::testing
