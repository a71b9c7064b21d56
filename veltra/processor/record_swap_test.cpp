#include "veltra/processor/record_swap.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Table = std::vector<std::uint8_t>;
const std::string kRecord = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJ";

std::uintptr_t addressOf(const void* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

// The rules step by step: reverse first, then undo what went past the limit.
struct Model {
    std::uintptr_t limit;

    unsigned char* swap(unsigned char* record, std::size_t code) {
        // Digits are reversed bytes, letters kept ones: a is 1 byte.
        static const std::string kParts[] = {"a",  "a",   "a",    "a",  "b",  "c",   "d",    "4",
                                             "44", "444", "4444", "8",  "88", "888", "8888", "2",
                                             "22", "222", "2222", "42", "88", "2"};
        const std::string& parts = kParts[code < 22 ? code : 0];
        const bool repeats = parts.size() > 1 && code < 19;
        const std::size_t element = !repeats ? code : code < 11 ? 7 : code < 15 ? 11 : 15;
        unsigned char* end = record;
        for (const char part : parts) {
            const int size = part < 'a' ? part - '0' : part - 'a' + 1;
            if (repeats) swap(end, element);
            if (!repeats && part < 'a') std::reverse(end, end + size);
            end += size;
        }
        const std::uintptr_t length = record[0] * 256U + record[1];
        if (code == 21 && length > 2 && length < 0x8000) limit = addressOf(record) + length;
        if (addressOf(end) <= limit) return end;
        const std::uintptr_t saved = limit;
        limit = UINTPTR_MAX;
        swap(record, element);
        limit = saved;
        return end;
    }
};

TEST(RecordSwap, EveryCodeAtEveryLimitFollowsTheRulesStepByStep) {
    std::mt19937 random(3);
    for (std::size_t run = 0; run < std::size_t{256} * 40 * 4; ++run) {
        Table record(40);
        std::generate(record.begin(), record.end(), [&] { return random() & 0xFFU; });
        if (run % 3 == 0) {  // a small length in one order or the other
            record[1 + run / 256 % 2] = 0;
            record[2 - run / 256 % 2] &= 3U;
        }
        Table expected = record;
        Model model{addressOf(expected.data()) + run / 256 % 40};
        SetPIntelLimit(addressOf(record.data()) + run / 256 % 40);

        const auto* end = IntelSwap(record.data() + 1, static_cast<std::uint8_t>(run));
        const auto* expectedEnd = model.swap(expected.data() + 1, run % 256);
        const auto offset = addressOf(record.data()) - addressOf(expected.data());
        ASSERT_EQ(record, expected) << "run " << run;
        ASSERT_EQ(addressOf(end), addressOf(expectedEnd) + offset);
        ASSERT_EQ(GetPIntelLimit(), model.limit + offset);
    }
    SetPIntelLimit(UINTPTR_MAX);
}

TEST(RecordSwap, TablesReverseTheirFieldsUpToTheLimitTwiceIsTheOriginalAndTheLimitComesBack) {
    const struct {
        Table table;
        std::uintptr_t limit;  // from the record's start
        std::string expected;  // then the rest as it was
    } rows[] = {
        {{0}, 36, ""},
        {{4, 15, 5, 15, 6, 7, 0}, 36, "abdcefgihjklmqpon"},
        {{3, 7, 22, 7, 255, 7, 0}, 36, "aedcbfjihgkonml"},
        {{8, 11, 19, 0}, 36, "dcbahgfeponmlkjitsrqvu"},
        {{1, 7, 3, 1, 7, 0, 15, 0}, 36, "dcbahgfelkjinm"},
        {{2, 15, 0, 3, 7, 0}, 36, "badcfejihg"},
        {{2, 3, 1, 0, 15, 0}, 36, ""},  // 256 bytes are kept, then the limit is passed
        {{7, 7, 0}, 6, "dcba"},
        {{7, 7, 0}, 8, "dcbahgfe"},
        {{7, 15, 7, 0}, 6, "dcbafe"},
        {{8, 0}, 6, ""},      // the first value is reversed and reversed back
        {{8, 0}, 3, "dcba"},  // neither value fits: the first is reversed all the same
    };
    SetPIntelLimit(77);
    for (const auto& row : rows) {
        std::string record = kRecord;
        const std::string expected = row.expected + kRecord.substr(row.expected.size());
        for (const std::string& result : {expected, kRecord}) {
            LimitTabIntelSwap(record.data(), row.table.data(),
                              addressOf(record.data()) + row.limit);
            EXPECT_EQ(record, result) << "row " << &row - rows;
            EXPECT_EQ(GetPIntelLimit(), 77U);
        }
    }
    std::string record = std::string("\x08\x00", 2) + kRecord;
    TabIntelSwap(record.data(), Table{21, 7, 15, 7, 0}.data());
    EXPECT_EQ(record, std::string("\x00\x08", 2) +
                          "dcba"
                          "fe" +
                          kRecord.substr(6));
    EXPECT_EQ(GetPIntelLimit(), 77U);
    TabIntelSwap(record.data() + 8, Table{15, 1, 15, 2, 0}.data());
    EXPECT_EQ(record.substr(8), "hgjilk" + kRecord.substr(12));
    SetPIntelLimit(UINTPTR_MAX);
    MultiIntelSwap(record.data() + 8, 15, 3);
    MultiIntelSwap(record.data() + 8, 7, -1);
    EXPECT_EQ(record.substr(8), kRecord.substr(6));
}

TEST(RecordSwap, DescribedDataIsCopiedFieldByFieldAsFarAsItFits) {
    const struct {
        std::vector<std::int8_t> description;
        std::size_t length;
        std::string expected;
    } rows[] = {
        {{0}, 9, ""},
        {{2, 4, 8, 0}, 14, "bafedcnmlkjihg"},
        {{1, 3, 5, 2, 0}, 40, "abcdefghikj"},
        {{-2, -4, -8, 2, 0}, 16, "abcdefghijklmnpo"},
        {{4, -4, 1, 0}, 7, "dcba"},  // nothing after a field that does not fit
        {{-128, 1, 0}, 127, ""},
        {{-128, 2, 0}, 130, kRecord + kRecord + kRecord + kRecord.substr(0, 20) + "vu"},
    };
    const std::string source = kRecord + kRecord + kRecord + kRecord;
    for (const auto& row : rows) {
        for (const std::string& before : {std::string(source.size(), '.'), source}) {
            std::string result = before;
            SwapData(result.data(), before == source ? result.data() : source.data(),
                     row.description.data(), row.length);
            EXPECT_EQ(result, row.expected + before.substr(row.expected.size()));
        }
    }
    std::string text = "abcdefghij";
    SwapData(text.data() + 1, text.data(), rows[1].description.data() + 2, 8);
    EXPECT_EQ(text, "ahgfedcbaj");
}

TEST(RecordSwap, NullPointersDoNothing) {
    std::string text = "abcd";
    EXPECT_EQ(IntelSwap(nullptr, 7), nullptr);
    MultiIntelSwap(nullptr, 7, 2);
    TabIntelSwap(nullptr, Table{7, 0}.data());
    LimitTabIntelSwap(text.data(), nullptr, 5);
    SwapData(nullptr, "wxyz", std::vector<std::int8_t>{4, 0}.data(), 4);
    SwapData(text.data(), nullptr, std::vector<std::int8_t>{4, 0}.data(), 4);
    SwapData(text.data(), "wxyz", nullptr, 4);
    EXPECT_EQ(text, "abcd");
}

}  // namespace
}  // namespace veltra
