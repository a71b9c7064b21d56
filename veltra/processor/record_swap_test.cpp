// SPDX-License-Identifier: MIT
#include "veltra/processor/record_swap.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/processor/testing/guarded_memory.h"
#include "veltra/processor/testing/record_swap_model.h"

namespace veltra {
namespace {

// Long runs of fields take another way than single ones.
TEST(RecordSwap, EveryFieldAtEveryLimitFollowsTheRulesAloneAndInRuns) {
    std::mt19937 random(3);
    std::vector<unsigned char> original(70'000), expected, single, run;
    std::generate(original.begin(), original.end(), [&] { return random() & 0xFFU; });
    for (std::size_t step = 0; step < std::size_t{256} * 160; ++step) {
        const auto field = static_cast<std::uint8_t>(step);
        const std::size_t round = step / 256;  // 40 of one field at each limit, then runs
        const std::size_t count = round < 40 ? 1 : round % 31 < 30 ? round % 31 : 100;
        const std::size_t limit = round < 40 ? round : round % 3 == 0 ? 40 + step % 200 : 1'000'000;
        expected.resize(4096);
        std::generate_n(expected.begin(), 64, [&] { return random() & 0xFFU; });
        if (step % 3 == 0) {  // a small length in one order or the other
            expected[1 + round % 2] = 0;
            expected[2 - round % 2] &= 3U;
        }
        single = run = expected;
        RecordSwapModel model{addressOf(expected.data()) + limit};
        SetPIntelLimit(addressOf(single.data()) + limit);
        unsigned char* end = &expected[1];
        void* singleEnd = &single[1];
        for (std::size_t i = 0; i < count; ++i) {
            end = model.swap(end, field);
            singleEnd = IntelSwap(singleEnd, field);
        }
        const auto offset = addressOf(single.data()) - addressOf(expected.data());
        ASSERT_EQ(single, expected) << "step " << step;
        ASSERT_EQ(addressOf(singleEnd), addressOf(end) + offset);
        ASSERT_EQ(GetPIntelLimit(), model.limit + offset);
        SetPIntelLimit(addressOf(run.data()) + limit);
        MultiIntelSwap(&run[1], field, static_cast<std::int32_t>(count));
        ASSERT_EQ(run, expected) << "step " << step;
    }
    const std::pair<std::uint8_t, std::int32_t> huge[] = {{7, 0x40000001},  {11, 0x20000001},
                                                          {20, 0x10000001}, {3, INT32_MAX},
                                                          {15, INT32_MAX},  {19, INT32_MAX}};
    for (const auto& [code, count] : huge) {
        single = run = original;
        SetPIntelLimit(addressOf(single.data()) + 97);
        MultiIntelSwap(&single[1], code, 96);
        SetPIntelLimit(addressOf(run.data()) + 97);
        for (int again = 0; again < 21; ++again)  // what does not fit is jumped over, not walked
            MultiIntelSwap(&run[1], code, count);
        ASSERT_TRUE(run == single) << int{code};
    }
    SetPIntelLimit(UINTPTR_MAX);
    const GuardedMemory pages;  // nothing is read behind the end of a description
    for (const std::size_t size : {2U, 4U, 8U})
        for (const std::size_t fields : {1U, 7U, 16U, 17U, 1040U, 2501U})
            for (const std::size_t start : {60U, 97U, 100U, 101U, 109U, 30'100U}) {
                auto* const sizes =
                    reinterpret_cast<std::int8_t*>(pages.at(Place::End, fields + 2));
                std::fill_n(sizes, fields, static_cast<std::int8_t>(size));
                const bool isCut = fields % 2 == 0;
                const bool isFollowed = fields == 17;  // by a field that is kept as it is
                sizes[fields] = isCut ? static_cast<std::int8_t>(size)
                                      : static_cast<std::int8_t>(isFollowed ? -1 : 0);
                sizes[fields + 1] = 0;
                single = run = original;
                SwapData(&run[start], &run[100], sizes, isCut ? size * (fields + 1) - 1 : 30'000);
                for (std::size_t i = 0; i < fields; ++i) {
                    unsigned char* const to = &single[start + i * size];
                    std::memmove(to, &single[100 + i * size], size);
                    std::reverse(to, to + size);
                }
                if (isFollowed) single[start + fields * size] = single[100 + fields * size];
                ASSERT_TRUE(run == single) << size << ' ' << fields << ' ' << start;
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
    EXPECT_TRUE(complete > 5'000 && inside > 5'000);

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
    const std::tuple<const char*, Codes, std::size_t> tables[] = {
        {"aedcbfjihgkonml", {3, 7, 22, 7, 255, 7, 0}, 36},
        {"dcbahgfelkjinm", {1, 7, 3, 1, 7, 0, 15, 0}, 36},
        {"badcfejihg", {2, 15, 0, 3, 7, 0}, 36},
        {"", {2, 3, 1, 0, 15, 0}, 36},  // 256 bytes are kept, then the limit is passed
        {"dcbafe", {7, 15, 7, 0}, 6},
        {"bafedc", {21, 7, 0}, 0}};  // the length moves the limit
    for (const auto& [expected, table, limit] : tables) {
        LimitTabIntelSwap(record.data(), table.data(), start + limit);
        expectRecord(expected);
    }
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
