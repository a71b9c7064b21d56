// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/unwind_table.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

#if defined(__x86_64__)
using namespace std::string_literals;

// Of the compiler's common part: the version, the letters that name its details, the details, the
// return address's register, and the rule that each function starts with.
struct Common {
    std::string version = "\1";
    std::string letters = "zR"s;
    std::string details = "\x1B";
    std::string returnAddress = "\x10";
    std::string program = "\x0C\x07\x08\x90\x01";  // CFA = stack pointer + 8, return address at -8
};

std::string sized(const std::string& bytes, const std::string& behindSize = {}) {
    return static_cast<char>(bytes.size()) + behindSize + bytes;
}

// Like "S8 A-8 =": where the CFA is, the return address, and the frame pointer of the caller.
std::string told(const UnwindRule& rule) {
    if (!rule.isUsable()) return "-";
    using Rule = UnwindRule;
    std::ostringstream text;
    text << "?SF*"[int(rule.cfa)] << rule.cfaOffset;
    rule.caller == Rule::Caller::None ? text << " none" : text << " A" << rule.callerOffset;
    text << ' ' << "?=A*"[int(rule.framePointer)];
    if (rule.framePointer != Rule::FramePointer::Same) text << rule.framePointerOffset;
    return text.str();
}

std::string bytesOf(std::string_view digits) {
    std::string bytes;
    for (; digits.size() > 1; digits.remove_prefix(2))
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(0, 2)), nullptr, 16));
    return bytes;
}

// What holds `at` bytes into a function of 64 that a program describes.
std::string ruleOf(const std::string& program, const Common& part = {}, int at = 4) {
    const std::string common = sized("\0\0\0\0"s + part.version + part.letters + "\0\x01\x78"s +
                                         part.returnAddress + sized(part.details) + part.program,
                                     "\0\0\0"s);
    const std::string own = sized("\0\0\0\0\0\0\0\0\x40\0\0\0\0"s + program, "\0\0\0"s);
    const auto start = [](const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.data());
    };
    const UnwindDescription description{start(own), std::uint32_t(own.size()), start(common),
                                        std::uint32_t(common.size())};
    const auto first = reinterpret_cast<std::uintptr_t>(own.data()) + 8;
    std::uintptr_t function = 0;
    const std::string rule = told(description.ruleAt(first + std::uintptr_t(at), function));
    return function == first || rule == "-" ? rule : "another function";
}

TEST(UnwindTable, RunsEachInstructionAsTheUnwinderDoes) {
    // Programs in hexadecimal digits: rows hold from their location on; numbers beyond 64 bits; the
    // frame pointer's and other registers; states that are remembered; expressions; what is unknown
    // or cut short.
    std::istringstream cases(
        ":S8 A-8 =,440E10:S16 A-8 =,450E10:S8 A-8 =,02040E10:S16 A-8 =,"
        "0304000E10:S16 A-8 =,04040000000E1000:S16 A-8 =,04000100000E10:S8 A-8 =,"
        "0E908080808080808080807F:S16 A-8 =,0C0620:F32 A-8 =,0D06:F8 A-8 =,0C0320:-,"
        "8602:S8 A-8 A-16,050602051003:S8 A-24 A-16,05860102:S8 A-8 =,"
        "86029003C6D0:S8 A-8 =,8602900306060610:S8 A-8 =,86020806:S8 A-8 =,0810:-,"
        "0710:S8 none =,0A0E1086020B:S8 A-8 =,0B:-,0A0A0A0A0A0A0A0A:S8 A-8 =,"
        "0A0A0A0A0A0A0A0A0A:-,0F03767806:*-8 A-8 =,"
        "0F0E76F8FFFFFFFFFFFFFFFFFFFF7F06:*-8 A-8 =,0F027678:-,0F0476780606:-,0F03777806:-,"
        "0F04767806:-,1006027610:S8 A-8 *16,1006027710:-,1010027610:-,10060176:-,"
        "1003027710:S8 A-8 =,2E10:S8 A-8 =,2D:-,16060176:-,0C07:-,0E100401:-");
    for (std::string program, expected;
         std::getline(cases, program, ':') && std::getline(cases, expected, ',');)
        EXPECT_EQ(ruleOf(bytesOf(program)), expected) << program;
    for (const auto& [at, expected] :
         {std::pair(-1, "-"), {0, "S8 A-8 ="}, {63, "S8 A-8 ="}, {64, "-"}})
        EXPECT_EQ(ruleOf("", {}, at), expected) << at;
}

TEST(UnwindTable, LeavesToTheUnwinderWhatItDoesNotUnderstand) {
    const std::pair<Common, bool> cases[] = {
        {{.version = "\3"}, true},
        {{.version = "\4"}, false},
        {{.letters = "zPLR", .details = "\x1B____\x1B\x1B"}, true},
        {{.letters = "zPLR", .details = "\x0C________\x1B\x1B"}, true},
        {{.letters = "zPR", .details = "\x50____\x1B"}, false},  // aligned
        {{.letters = "zPR", .details = "\x01\x10\x1B"}, false},  // of any length
        {{.letters = "zRP", .details = "\x1B\x1B_"}, false},     // cut short
        {{.details = "\x03"}, false},                            // not relative
        {{.letters = "z", .details = ""}, false},
        {{.letters = "RzR"}, false},
        {{.letters = "zRS"}, false},  // a signal's frame
        {{.letters = "zRB"}, false},  // signed
        {{.letters = "zLLLLR", .details = "\x1B\x1B\x1B\x1B\x1B"}, false},
        {{.returnAddress = "\x0F"}, false},
        {{.program = "\x0C"}, false},
    };
    for (const auto& [part, isUnderstood] : cases)
        EXPECT_EQ(ruleOf("\x0C\x07\x08", part) != "-", isUnderstood) << &part - &cases[0].first;
    std::uintptr_t function = 0;
    for (const char* length : {"\0\0\1\0", "\xFF\xFF\xFF\xFF"}) {  // none is that long
        std::uint32_t words[4]{8, 4, 0, 0};
        std::memcpy(words, length, 4);
        const auto* const description = reinterpret_cast<const unsigned char*>(words);
        EXPECT_EQ(told(UnwindDescription::at(description).ruleAt(0, function)), "-");
    }
    EXPECT_FALSE(UnwindTable(nullptr).isUsable());
    const unsigned char otherForm[16] = {1, 0x1B, 0x03, 0x3C, 0, 0, 0, 0, 1};
    EXPECT_FALSE(UnwindTable(otherForm).isUsable());
}
#endif

}  // namespace
}  // namespace veltra
