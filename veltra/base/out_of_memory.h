// SPDX-License-Identifier: MIT
// Lack of memory as an answer, for functions that must not throw:
//
//   return unlessOutOfMemory(std::string(), [&] { return folder + '/' + name; });
//
// Lack of memory is std::bad_alloc, and std::length_error: a container that would outgrow the
// address space. Anything else is a mistake that nobody should hide, or the cancellation of the
// thread, which must not be stopped on its way; both pass through. (A noexcept function that comes
// to points of cancellation, such as reading a file, keeps a NoCancellation while it does.)
#pragma once

#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace veltra {

// What `work` returns, or `neutral` when memory was out.
template <typename Neutral, typename Work>
std::invoke_result_t<Work&> unlessOutOfMemory(Neutral&& neutral, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return std::forward<Neutral>(neutral);
    } catch (const std::length_error&) {
        return std::forward<Neutral>(neutral);
    }
}

// Whether `work` came to its end.
template <typename Work>
bool isDoneUnlessOutOfMemory(Work work) {
    return unlessOutOfMemory(false, [&work] {
        work();
        return true;
    });
}

}  // namespace veltra
