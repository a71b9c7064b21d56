// SPDX-License-Identifier: MIT
// How the library and its alert helper talk. The library starts
//
//   veltra-alert --title=T --header=H --message=M --default=D --alternate=A --other=O
//                --timeout=MILLISECONDS --critical|--plain
//
// with one socket as standard input and output. The helper writes one of the words below and a line
// feed, and ends. Anything else, an early end above all, means that it could not ask; its exit
// status says nothing. Standard input becomes readable when the asking process is gone: then the
// helper ends too.
#pragma once

#include <array>
#include <string_view>

namespace veltra {

// In the order of AlertAnswer.
inline constexpr std::array<std::string_view, 4> kAlertAnswerWords = {
    "default",
    "alternate",
    "other",
    "timeout",
};

}  // namespace veltra
