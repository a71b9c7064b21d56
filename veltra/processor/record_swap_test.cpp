#include "veltra/processor/record_swap.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

const std::string kRecord = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJ";

std::uintptr_t addressOf(const void* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

class RecordSwap : public testing::Test {
protected:
    void TearDown() override { SetPIntelLimit(UINTPTR_MAX); }
};

// The rules step by step: reverse, then undo what went past the limit.
struct Model {
    std::uintptr_t limit = UINTPTR_MAX;

    unsigned char* swap(unsigned char* record, int code) {
        unsigned char* end = record;
        int element = code;
        const auto reverse = [&](int size) { std::reverse(end, end + size), end += size; };
        const auto repeat = [&](int times, int of) {
            for (element = of; times > 0; --times)
                end = swap(end, of);
        };
        if (code >= 4 && code <= 6)
            end += code - 2;
        else if (code == 7)
            reverse(4);
        else if (code >= 8 && code <= 10)
            repeat(code - 6, 7);
        else if (code == 11)
            reverse(8);
        else if (code >= 12 && code <= 14)
            repeat(code - 10, 11);
        else if (code == 15 || code == 21)
            reverse(2);
        else if (code >= 16 && code <= 18)
            repeat(code - 14, 15);
        else if (code == 19)
            reverse(4), reverse(2);
        else if (code == 20)
            reverse(8), reverse(8);
        else
            ++end;
        const int length = record[0] < 128 ? record[0] * 256 + record[1] : -1;
        if (code == 21 && length > 2)
            limit = addressOf(record) + static_cast<std::uintptr_t>(length);
        if (addressOf(end) <= limit) return end;
        const std::uintptr_t saved = limit;
        limit = UINTPTR_MAX;
        swap(record, element);
        limit = saved;
        return end;
    }
};

TEST_F(RecordSwap, EveryCodeAtEveryLimitFollowsTheRulesStepByStep) {
    std::mt19937 random(3);
    for (int run = 0; run < 256 * 40 * 4; ++run) {
        const int code = run % 256;
        std::vector<unsigned char> record(40);
        std::generate(record.begin(), record.end(), [&] { return random() & 0xFFU; });
        if (run % 3 == 0) record[run % 2] = 0;  // lengths that are small in one order or the other
        std::vector<unsigned char> expected = record;
        const auto offset = static_cast<std::uintptr_t>(run / 256 % 40);
        SetPIntelLimit(addressOf(record.data()) + offset);
        Model model{addressOf(expected.data()) + offset};

        const auto* end = IntelSwap(record.data() + 1, static_cast<std::uint8_t>(code));
        const auto* expectedEnd = model.swap(expected.data() + 1, code);
        ASSERT_EQ(record, expected) << "code " << code << " limit " << offset;
        ASSERT_EQ(addressOf(end) - addressOf(record.data()),
                  addressOf(expectedEnd) - addressOf(expected.data()));
        ASSERT_EQ(GetPIntelLimit() - addressOf(record.data()),
                  model.limit - addressOf(expected.data()));
    }
}

TEST_F(RecordSwap, TablesReverseTheirFieldsUpToTheLimitAndTwiceIsTheOriginal) {
    constexpr std::uintptr_t kNone = UINTPTR_MAX;
    const struct {
        std::vector<std::uint8_t> table;
        std::uintptr_t limit;  // from the record's start
        std::string expected;  // then the rest as it was
    } rows[] = {
        {{0}, kNone, ""},
        {{4, 15, 5, 15, 6, 7, 0}, kNone, "abdcefgihjklmqpon"},
        {{3, 7, 22, 7, 255, 7, 0}, kNone, "aedcbfjihgkonml"},
        {{8, 11, 0}, kNone, "dcbahgfeponmlkji"},
        {{9, 19, 15, 0}, kNone, "dcbahgfelkjiponmrqts"},
        {{10, 12, 0}, kNone, "dcbahgfelkjiponmxwvutsrqFEDCBAzy"},
        {{13, 15, 0}, kNone, "hgfedcbaponmlkjixwvutsrqzy"},
        {{14, 16, 0}, kNone, "hgfedcbaponmlkjixwvutsrqFEDCBAzyHGJI"},
        {{17, 18, 20, 0}, kNone, "badcfehgjilknmvutsrqpoDCBAzyxw"},
        {{1, 7, 3, 0}, kNone, "dcbahgfelkji"},
        {{1, 7, 0, 15, 0}, kNone, "ba"},
        {{2, 15, 0, 18, 0}, kNone, "badcfehgjilknmporqtsvuxwzyBADCFEHGJI"},
        {{7, 7, 0}, 6, "dcba"},
        {{7, 7, 0}, 8, "dcbahgfe"},
        {{7, 15, 7, 0}, 6, "dcbafe"},
        {{19, 0}, 5, ""},
        {{20, 0}, 15, ""},
        {{8, 0}, 6, ""},      // the first value goes forth and back
        {{8, 0}, 3, "dcba"},  // neither may be reversed, the first one is
        {{3, 18, 0},
         5,
         "a"
         "bc"
         "ed"},
    };
    for (const auto& row : rows) {
        std::string record = kRecord;
        const std::string expected = row.expected + kRecord.substr(row.expected.size());
        for (const std::string& result : {expected, kRecord}) {
            if (row.limit == kNone) {
                TabIntelSwap(record.data(), row.table.data());
            } else {
                LimitTabIntelSwap(record.data(), row.table.data(),
                                  addressOf(record.data()) + row.limit);
            }
            EXPECT_EQ(record, result);
            EXPECT_EQ(GetPIntelLimit(), UINTPTR_MAX);
        }
    }
}

TEST_F(RecordSwap, LongRepeatsCountTheirHighByte) {
    std::string words;
    std::string expected;
    for (int word = 0; word < 257; ++word) {
        words += "ab";
        expected += word < 256 ? "ba" : "ab";
    }
    const std::uint8_t table[] = {2, 15, 1, 0, 0};
    TabIntelSwap(words.data(), table);
    EXPECT_EQ(words, expected);
}

TEST_F(RecordSwap, ABlockLengthLimitsTheFieldsAfterItForTheRestOfTheTable) {
    std::string record = std::string("\x08\x00", 2) + "abcdefgh";
    const std::uint8_t table[] = {21, 7, 15, 7, 0};
    SetPIntelLimit(77);
    TabIntelSwap(record.data(), table);
    EXPECT_EQ(record, std::string("\x00\x08", 2) + "dcbafegh");
    EXPECT_EQ(GetPIntelLimit(), 77U);

    IntelSwap(record.data() + 2, 21);  // past the limit, but it sets a limit of its own: 'cd'
    EXPECT_EQ(record.substr(2), "cdbafegh");
    EXPECT_EQ(GetPIntelLimit(), addressOf(record.data() + 2) + 0x6364);
}

TEST_F(RecordSwap, RepeatedFieldsAdvance) {
    std::string record = kRecord;
    MultiIntelSwap(record.data(), 15, 3);
    MultiIntelSwap(record.data() + 6, 7, 0);
    MultiIntelSwap(record.data() + 6, 7, -1);
    EXPECT_EQ(record, "badcfe" + kRecord.substr(6));
}

TEST_F(RecordSwap, DescribedDataIsCopiedFieldByFieldAsFarAsItFits) {
    const struct {
        std::vector<std::int8_t> description;
        std::size_t length;
        std::string expected;
    } rows[] = {
        {{0}, 9, ""},
        {{2, 4, 8, 0}, 14, "bafedcnmlkjihg"},
        {{1, 3, 5, 2, 0}, 40, "abcdefghikj"},
        {{-2, -4, -8, 2, 0}, 16, "abcdefghijklmnpo"},
        {{4, 4, 0}, 7, "dcba"},
        {{4, -4, 1, 0}, 7, "dcba"},  // what comes after a field that does not fit is not looked at
        {{-128, 1, 0}, 127, ""},
        {{-128, 2, 0}, 130, kRecord + kRecord + kRecord + kRecord.substr(0, 20) + "vu"},
    };
    const std::string source = kRecord + kRecord + kRecord + kRecord;
    for (const auto& row : rows) {
        std::string destination(source.size(), '.');
        SwapData(destination.data(), source.data(), row.description.data(), row.length);
        EXPECT_EQ(destination,
                  row.expected + std::string(source.size() - row.expected.size(), '.'));

        std::string inPlace = source;
        SwapData(inPlace.data(), inPlace.data(), row.description.data(), row.length);
        EXPECT_EQ(inPlace, row.expected + source.substr(row.expected.size()));
    }
    std::string text = "abcdefghij";
    const std::int8_t description[] = {8, 0};
    SwapData(text.data() + 1, text.data(), description, 8);
    EXPECT_EQ(text, "ahgfedcbaj");
}

TEST_F(RecordSwap, NullPointersDoNothing) {
    std::string text = "abcd";
    const std::uint8_t table[] = {7, 0};
    const std::int8_t description[] = {4, 0};
    EXPECT_EQ(IntelSwap(nullptr, 7), nullptr);
    MultiIntelSwap(nullptr, 7, 2);
    TabIntelSwap(nullptr, table);
    LimitTabIntelSwap(text.data(), nullptr, 5);
    SwapData(nullptr, text.data(), description, 4);
    SwapData(text.data(), nullptr, description, 4);
    SwapData(text.data(), "wxyz", nullptr, 4);
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(GetPIntelLimit(), UINTPTR_MAX);
}

}  // namespace
}  // namespace veltra
