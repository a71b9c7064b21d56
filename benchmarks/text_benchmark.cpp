// SPDX-License-Identifier: MIT
// UTF-8 text: the structural check beside validators, the ASCII scans beside strlen, the copy
// beside strncpy. Every text is NUL-terminated, and whoever needs its length pays for strlen.
#include "benchmarks/ratios.h"
#include "veltra/processor/utf8_text.h"

#include <cstring>
#include <deque>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <simdjson.h>
#include <unicode/ustring.h>

namespace {

constexpr std::size_t kSizes[] = {16, 1024, std::size_t{1} << 20U};

using Judge = int (*)(const char* text);

int simdjsonCheck(const char* text) {
    return simdjson::validate_utf8(text, std::strlen(text)) ? 1 : 0;
}

int glibCheck(const char* text) {
    return g_utf8_validate(text, -1, nullptr);
}

int icuCheck(const char* text) {
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strFromUTF8(nullptr, 0, &length, text, -1, &error);
    return error == U_BUFFER_OVERFLOW_ERROR ? 1 : 0;
}

int wholeIsAscii(const char* text) {
    return veltra::utf8_is_ascii(text, 0);
}

int asciiLength(const char* text) {
    return static_cast<int>(veltra::utf8_strlen(text));
}

int cLength(const char* text) {
    return static_cast<int>(std::strlen(text));
}

// About three of four characters are ASCII; the others have two, three and four bytes.
std::string mixedText(std::size_t size) {
    constexpr std::string_view kOthers[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xB5",
                                            "\xCE\xA9"};
    std::string text;
    unsigned random = 1;
    while (text.size() + 4 <= size) {
        random = random * 1664525U + 1013904223U;
        if (random >> 30U == 0)
            text += kOthers[random >> 24U & 3U];
        else
            text += static_cast<char>('a' + (random >> 16U) % 26);
    }
    return text.append(size - text.size(), '.');
}

class Family : public RatioList {
public:
    const char* addJudge(const std::string& name, Judge judge, const std::string& text) {
        return add(name, [judge, &text](benchmark::State& state) {
            if (judge(text.c_str()) == 0) state.SkipWithError("the text does not pass");
            for (auto _ : state) {
                const char* data = text.data();
                benchmark::DoNotOptimize(data);
                benchmark::DoNotOptimize(judge(data));
            }
        });
    }

    const char* addCopy(const std::string& name, char* (*copy)(char*, const char*, std::size_t),
                        const std::string& text) {
        return add(name, [copy, &text](benchmark::State& state) {
            std::string buffer(text.size() + 1, '\0');
            for (auto _ : state) {
                const char* data = text.data();
                benchmark::DoNotOptimize(data);
                benchmark::DoNotOptimize(copy(buffer.data(), data, buffer.size()));
                benchmark::ClobberMemory();
            }
        });
    }

    const std::string& text(std::string made) { return m_texts.emplace_back(std::move(made)); }

private:
    std::deque<std::string> m_texts;
};

}  // namespace

int main(int argc, char** argv) {
    Family family;
    for (const std::size_t size : kSizes) {
        const std::string tail = std::to_string(size).insert(0, 1, ' ');
        const std::string& ascii = family.text(std::string(size, 'a'));
        const std::string& mixed = family.text(mixedText(size));
        for (const auto& [kind, text] : {std::pair("ascii", &ascii), std::pair("mixed", &mixed)}) {
            std::string end(kind);
            end.insert(0, 1, ' ').append(tail);
            const char* ours = family.addJudge("check" + end, veltra::utf8_check, *text);
            family.compare(ours, family.addJudge("simdjson" + end, simdjsonCheck, *text), 1.05);
            family.compare(ours, family.addJudge("glib" + end, glibCheck, *text), 1.05);
            family.compare(ours, family.addJudge("icu" + end, icuCheck, *text), 1.05);
        }
        const char* length = family.addJudge("strlen" + tail, cLength, ascii);
        family.compare(family.addJudge("is_ascii" + tail, wholeIsAscii, ascii), length, 1.4);
        family.compare(family.addJudge("utf8_strlen" + tail, asciiLength, ascii), length, 1.4);
        const char* copied = family.addCopy("strncpy" + tail, std::strncpy, mixed);
        family.compare(family.addCopy("copy" + tail, veltra::utf8_strncpy, mixed), copied, 0);
    }
    return family.run(argc, argv);
}
