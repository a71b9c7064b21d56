// SPDX-License-Identifier: MIT
// Searching a text for a word in time that grows with the sum of their lengths, whatever they are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace veltra::detail {

// For each length of a start of `word`: how long a start of the word, shorter than it, it ends
// with.
template <typename Unit>
std::vector<std::size_t> bordersOf(std::basic_string_view<Unit> word) {
    std::vector<std::size_t> borders(word.size() + 1);
    std::size_t border = 0;
    for (std::size_t length = 1; length < word.size(); ++length) {
        while (border > 0 && word[border] != word[length])
            border = borders[border];
        if (word[border] == word[length]) ++border;
        borders[length + 1] = border;
    }
    return borders;
}

// The first place of `word` in `text` that `isWanted(place)`; npos when there is none. The places
// may overlap. Throws std::bad_alloc. REQUIRES: the word is not empty.
template <typename Unit, typename IsWanted>
std::size_t firstPlace(std::basic_string_view<Unit> text, std::basic_string_view<Unit> word,
                       IsWanted isWanted) {
    constexpr std::size_t kNowhere = std::basic_string_view<Unit>::npos;
    const std::vector<std::size_t> borders = bordersOf(word);
    std::size_t matched = 0;  // units of the word that the text before `next` ends with
    for (std::size_t next = 0; next < text.size(); ++next) {
        while (matched > 0 && word[matched] != text[next])
            matched = borders[matched];
        if (matched == 0) next = text.find(word[0], next);  // fast where little resembles the word
        if (next == kNowhere) break;
        if (++matched < word.size()) continue;
        const std::size_t place = next + 1 - matched;
        if (isWanted(place)) return place;
        matched = borders[matched];
    }
    return kNowhere;
}

// The same from the end.
template <typename Unit, typename IsWanted>
std::size_t lastPlace(std::basic_string_view<Unit> text, std::basic_string_view<Unit> word,
                      IsWanted isWanted) {
    using String = std::basic_string<Unit>;
    const String reversedText(text.rbegin(), text.rend());
    const String reversedWord(word.rbegin(), word.rend());
    const auto placeOf = [&](std::size_t reversed) { return text.size() - word.size() - reversed; };
    using View = std::basic_string_view<Unit>;
    const std::size_t found =
        firstPlace(View(reversedText), View(reversedWord),
                   [&](std::size_t reversed) { return isWanted(placeOf(reversed)); });
    return found == View::npos ? found : placeOf(found);
}

}  // namespace veltra::detail
