// SPDX-License-Identifier: MIT
#include "veltra/processor/record_swap.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/processor/testing/guarded_memory.h"
#include "veltra/processor/testing/record_swap_model.h"

namespace veltra {
namespace {

TEST(RecordSwap, EveryCodeAtEveryLimitFollowsTheRulesStepByStep) {
    std::mt19937 random(3);
    for (std::size_t run = 0; run < std::size_t{256} * 40 * 4; ++run) {
        std::vector<unsigned char> record(40);
        std::generate(record.begin(), record.end(), [&] { return random() & 0xFFU; });
        if (run % 3 == 0) {  // a small length in one order or the other
            record[1 + run / 256 % 2] = 0;
            record[2 - run / 256 % 2] &= 3U;
        }
        auto expected = record;
        RecordSwapModel model{addressOf(expected.data()) + run / 256 % 40};
        SetPIntelLimit(addressOf(record.data()) + run / 256 % 40);

        const auto* end = IntelSwap(record.data() + 1, static_cast<std::uint8_t>(run));
        const auto* expectedEnd = model.swap(expected.data() + 1, run % 256);
        const auto offset = addressOf(record.data()) - addressOf(expected.data());
        ASSERT_EQ(record, expected) << "run " << run;
        ASSERT_EQ(addressOf(end), addressOf(expectedEnd) + offset);
        ASSERT_EQ(GetPIntelLimit(), model.limit + offset);
    }
}

// Long runs of fields take another way than single ones.
TEST(RecordSwap, RunsOfFieldsEqualTheSameFieldsOneByOne) {
    std::mt19937 random(4);
    std::vector<unsigned char> original(70'000), single, run;
    std::generate(original.begin(), original.end(), [&] { return random() & 0xFFU; });
    for (std::size_t code = 0; code < std::size_t{256} * 30; ++code) {
        const auto field = static_cast<std::uint8_t>(code);
        const int count = code % 30 < 20 ? static_cast<int>(code % 30) : 100;
        single = run = original;
        const std::uintptr_t limit = code % 7 == 0 ? 40 + code % 200 : 0;
        SetPIntelLimit(limit > 0 ? addressOf(single.data()) + limit : UINTPTR_MAX);
        void* at = &single[1];
        for (int i = 0; i < count; ++i)
            at = IntelSwap(at, field);
        SetPIntelLimit(limit > 0 ? addressOf(run.data()) + limit : UINTPTR_MAX);
        MultiIntelSwap(&run[1], field, count);
        ASSERT_TRUE(run == single) << code;
    }
    const struct {
        std::uint8_t code;
        std::int32_t count;
    } huge[] = {{7, 0x40000001}, {11, 0x20000001}, {20, 0x10000001},
                {3, INT32_MAX},  {15, INT32_MAX},  {19, INT32_MAX}};
    for (const auto& row : huge) {
        single = run = original;
        SetPIntelLimit(addressOf(single.data()) + 97);
        MultiIntelSwap(&single[1], row.code, 96);
        SetPIntelLimit(addressOf(run.data()) + 97);
        MultiIntelSwap(&run[1], row.code, row.count);
        ASSERT_TRUE(run == single) << int{row.code};
    }
    SetPIntelLimit(UINTPTR_MAX);
    for (const std::size_t size : {2U, 4U, 8U}) {
        for (const std::size_t fields : {1U, 7U, 16U, 17U, 1040U, 2500U}) {
            for (const std::size_t start : {60U, 97U, 100U, 101U, 109U, 30'100U}) {
                std::vector<std::int8_t> sizes(fields + 2, static_cast<std::int8_t>(size));
                sizes.back() = 0;
                single = run = original;
                SwapData(&run[start], &run[100], sizes.data(), size * (fields + 1) - 1);
                for (std::size_t i = 0; i < fields; ++i) {
                    unsigned char* const to = &single[start + i * size];
                    std::memmove(to, &single[100 + i * size], size);
                    std::reverse(to, to + size);
                }
                ASSERT_TRUE(run == single) << size << ' ' << fields << ' ' << start;
            }
        }
    }
}

TEST(RecordSwap, ARecordThatEndsAtItsLastPageIsSwappedWithin) {
    std::mt19937 random(5);
    const GuardedMemory records, tables;
    int complete = 0, inside = 0;
    for (int run = 0; run < 60'000; ++run) {
        std::vector<unsigned char> record(random() % 80), table(random() % 12);
        std::generate(record.begin(), record.end(), [&] {  // lengths, too
            return random() % 2 == 0 ? 0 : random() % (run % 2 == 0 ? 256 : 32);
        });
        for (std::size_t at = 0; at < table.size(); ++at) {
            const bool isHigh = at > 1 && table[at - 2] == 2;
            table[at] = isHigh ? 0 : static_cast<unsigned char>(random() % 24);
        }
        if (run % 8 > 0) table.push_back(0);
        const BoundedModel expected(record, table);
        auto* const bytes = records.at(Place::End, record.size());
        auto* const codes = tables.at(Place::End, table.size());
        std::copy(record.begin(), record.end(), bytes);
        std::copy(table.begin(), table.end(), codes);

        std::size_t taken = 99;
        const bool isComplete = SwapRecordWithin(bytes, record.size(), codes, table.size(), &taken);
        ASSERT_EQ(isComplete, expected.isComplete) << run;
        ASSERT_EQ(taken, expected.taken) << run;
        ASSERT_TRUE(std::equal(expected.record.begin(), expected.record.end(), bytes)) << run;
        complete += isComplete ? 1 : 0;
        if (!expected.isInside) continue;
        ++inside;
        std::vector<unsigned char> longer = record;
        longer.resize(16'384);
        table.push_back(0);
        table.resize(table.size() + 4);
        LimitTabIntelSwap(longer.data(), table.data(), addressOf(longer.data()) + record.size());
        longer.resize(record.size());
        ASSERT_TRUE(longer == expected.record) << run;
    }
    EXPECT_GT(complete, 5'000);
    EXPECT_GT(inside, 5'000);

    std::uint8_t value[] = {1, 2, 3, 4};
    const std::uint8_t table[] = {7, 0};
    std::size_t taken = 99;
    EXPECT_FALSE(SwapRecordWithin(nullptr, 4, table, 2, &taken));
    EXPECT_EQ(taken, 0U);
    EXPECT_FALSE(SwapRecordWithin(value, 4, nullptr, 2, nullptr));
    EXPECT_TRUE(SwapRecordWithin(value, 4, table, 2, nullptr));
    EXPECT_EQ(value[0], 4);
}

TEST(RecordSwap, TablesAndDescriptionsGoFieldByFieldAndLeaveTheLimitAsItWas) {
    using Codes = std::vector<std::uint8_t>;
    std::string original;
    for (int letter = 0; letter < 150; ++letter)
        original += static_cast<char>('a' + letter % 26);
    std::string record = original;
    const std::uintptr_t start = addressOf(record.data());
    SetPIntelLimit(start + 8);
    const auto expectRecord = [&](const std::string& changed) {
        EXPECT_EQ(record, changed + original.substr(changed.size()));
        EXPECT_EQ(GetPIntelLimit(), start + 8);
        record = original;
    };
    const auto expectTable = [&](const char* expected, const Codes& table, std::size_t limit) {
        LimitTabIntelSwap(record.data(), table.data(), start + limit);
        expectRecord(expected);
    };
    expectTable("aedcbfjihgkonml", {3, 7, 22, 7, 255, 7, 0}, 36);
    expectTable("dcbahgfelkjinm", {1, 7, 3, 1, 7, 0, 15, 0}, 36);
    expectTable("badcfejihg", {2, 15, 0, 3, 7, 0}, 36);
    expectTable("", {2, 3, 1, 0, 15, 0}, 36);  // 256 bytes are kept, then the limit is passed
    expectTable("dcbafe", {7, 15, 7, 0}, 6);
    expectTable("bafedc", {21, 7, 0}, 0);  // the length moves the limit
    TabIntelSwap(record.data(), Codes{7, 7, 7, 0}.data());
    expectRecord("dcbahgfelkji");
    MultiIntelSwap(record.data(), 15, 3);
    MultiIntelSwap(record.data(), 7, -1);
    expectRecord("badcfe");

    using Sizes = std::vector<std::int8_t>;
    const auto expectCopy = [&](const std::string& expected, const Sizes& sizes, std::size_t length,
                                std::size_t from = 0, std::size_t to = 0) {
        SwapData(&record[to], &record[from], sizes.data(), length);
        expectRecord(expected);
    };
    expectCopy("abcdegfkjihsrqponml", {5, 2, 4, 8, 0}, 40);
    expectCopy("efghijklmnopqrts", {-2, -4, -8, 2, 0}, 16, 30);
    expectCopy("dcba", {4, -4, 1, 0}, 7);  // nothing after a field that does not fit
    expectCopy(original.substr(0, 128) + "zy", {-128, 2, 0}, 130);
    expectCopy("ahgfedcba", {8, 0}, 8, 0, 1);

    EXPECT_EQ(IntelSwap(nullptr, 7), nullptr);
    MultiIntelSwap(nullptr, 7, 2);
    TabIntelSwap(nullptr, Codes{7, 0}.data());
    LimitTabIntelSwap(record.data(), nullptr, UINTPTR_MAX);
    SwapData(nullptr, "wxyz", Sizes{4, 0}.data(), 4);
    SwapData(record.data(), nullptr, Sizes{4, 0}.data(), 4);
    SwapData(record.data(), "wxyz", nullptr, 4);
    expectRecord("");
}

}  // namespace
}  // namespace veltra
