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

std::string sized(const std::string& bytes) {
    return std::string(1, static_cast<char>(bytes.size())) + bytes;
}

std::string block(const std::string& bytes) {
    return std::string(1, static_cast<char>(bytes.size())) + "\0\0\0"s + bytes;
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

// What holds `at` bytes into a function of 64 that a program describes.
std::string ruleOf(const std::string& program, const Common& part = {}, int at = 4) {
    const std::string common = block("\0\0\0\0"s + part.version + part.letters + "\0\x01\x78"s +
                                     part.returnAddress + sized(part.details) + part.program);
    const std::string own = block("\0\0\0\0\0\0\0\0\x40\0\0\0\0"s + program);
    const auto bytesOf = [](const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.data());
    };
    const UnwindDescription description{bytesOf(own), std::uint32_t(own.size()), bytesOf(common),
                                        std::uint32_t(common.size())};
    const auto start = reinterpret_cast<std::uintptr_t>(own.data()) + 8;
    std::uintptr_t function = 0;
    const std::string rule = told(description.ruleAt(start + std::uintptr_t(at), function));
    return function == start || rule == "-" ? rule : "another function";
}

TEST(UnwindTable, RunsEachInstructionAsTheUnwinderDoes) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "S8 A-8 ="},
        {"\x44\x0E\x10"s, "S16 A-8 ="},  // a row holds from its location on
        {"\x45\x0E\x10"s, "S8 A-8 ="},
        {"\x02\x04\x0E\x10"s, "S16 A-8 ="},
        {"\x03\x04\0\x0E\x10"s, "S16 A-8 ="},
        {"\x04\x04\0\0\0\x0E\x10\0"s, "S16 A-8 ="},
        {"\x04\0\x01\0\0\x0E\x10"s, "S8 A-8 ="},
        {"\x0E\x90\x80\x80\x80\x80\x80\x80\x80\x80\x80\x7F"s, "S16 A-8 ="},  // beyond 64 bits
        {"\x0C\x06\x20"s, "F32 A-8 ="},
        {"\x0D\x06"s, "F8 A-8 ="},
        {"\x0C\x03\x20"s, "-"},
        {"\x86\x02"s, "S8 A-8 A-16"},
        {"\x05\x06\x02\x05\x10\x03"s, "S8 A-24 A-16"},
        {"\x05\x86\x01\x02"s, "S8 A-8 ="},  // of a register that does not count
        {"\x86\x02\x90\x03\xC6\xD0"s, "S8 A-8 ="},
        {"\x86\x02\x90\x03\x06\x06\x06\x10"s, "S8 A-8 ="},
        {"\x86\x02\x08\x06"s, "S8 A-8 ="},
        {"\x08\x10"s, "-"},
        {"\x07\x10"s, "S8 none ="},
        {"\x0A\x0E\x10\x86\x02\x0B"s, "S8 A-8 ="},
        {"\x0B"s, "-"},
        {std::string(8, '\x0A'), "S8 A-8 ="},
        {std::string(9, '\x0A'), "-"},
        {"\x0F\x03\x76\x78\x06"s, "*-8 A-8 ="},
        {"\x0F\x0E\x76\xF8\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F\x06"s, "*-8 A-8 ="},
        {"\x0F\x02\x76\x78"s, "-"},
        {"\x0F\x04\x76\x78\x06\x06"s, "-"},
        {"\x0F\x03\x77\x78\x06"s, "-"},
        {"\x0F\x04\x76\x78\x06"s, "-"},  // more than there is
        {"\x10\x06\x02\x76\x10"s, "S8 A-8 *16"},
        {"\x10\x06\x02\x77\x10"s, "-"},
        {"\x10\x10\x02\x76\x10"s, "-"},
        {"\x10\x06\x01\x76"s, "-"},
        {"\x10\x03\x02\x77\x10"s, "S8 A-8 ="},
        {"\x2E\x10"s, "S8 A-8 ="},
        {"\x2D"s, "-"},
        {"\x16\x06\x01\x76"s, "-"},
        {"\x0C\x07"s, "-"},
        {"\x0E\x10\x04\x01"s, "-"},
    };
    for (const auto& [program, expected] : cases)
        EXPECT_EQ(ruleOf(program), expected) << &program - &cases[0].first;
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
