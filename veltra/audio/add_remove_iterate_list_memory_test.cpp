// SPDX-License-Identifier: MIT
// The tests of one thread.
#include "veltra/audio/add_remove_iterate_list.h"
#include "veltra/base/testing/counted_new.h"

namespace veltra {
namespace {

using List = CAddRemoveIterateList;
using testing::allocated;
using testing::freed;
using testing::memoryIsOut;
using testing::whileFreeing;

using Blocks = std::pair<int, int>;  // taken, and freed

template <typename Call>
Blocks blocksUsedBy(Call call) {
    const Blocks before(allocated, freed);
    call();
    return {allocated - before.first, freed - before.second};
}

char contexts[] = "abcd";  // a context is the letter that it points to

template <int kOffset>
void write(void* context, std::uint32_t message, void* data) {
    EXPECT_EQ(message, 0x89ABCDEFU);
    *static_cast<std::string*>(data) += static_cast<char>(*static_cast<char*>(context) - kOffset);
}

void neverCalled(void*, std::uint32_t, void*) {
    ADD_FAILURE() << "called";
}

TEST(AddRemoveIterateList, BehavesAsASequentialListAndFreesOnlyInIterate) {
    std::minstd_rand random(4711);
    for (int run = 0; run < 300; ++run) {
        List list;
        std::string active;  // the letters as they are to be called
        int gone = 0;        // nodes that the next pass frees
        for (int step = 0; step < 100; ++step) {
            const auto choice = random() % 8;
            char* context = &contexts[random() % 4];
            if (choice < 4) {
                const bool large = random() % 2 != 0;
                const auto callback = large ? write<32> : write<0>;
                EXPECT_EQ(blocksUsedBy([&] { list.Add(context, callback); }), (Blocks{1, 0}));
                active += static_cast<char>(*context - (large ? 32 : 0));
            } else if (choice < 6) {
                EXPECT_EQ(blocksUsedBy([&] { list.Remove(context); }), (Blocks{1, 0}));
                const auto has = [context](char letter) { return (letter | 32) == *context; };
                gone += 1 + static_cast<int>(std::erase_if(active, has));
            } else {
                std::string calls;
                calls.reserve(active.size() + 100);
                const auto used = blocksUsedBy([&] { list.Iterate(0x89ABCDEFU, &calls); });
                EXPECT_EQ(used, (Blocks{0, std::exchange(gone, 0)}));
                ASSERT_EQ(calls, active);
            }
        }
    }
}

TEST(AddRemoveIterateList, ModifyTakesTheNewestFirstAndTellsWhetherTheListChanged) {
    List list;
    const auto node = [](int context, List::Callback callback, List::SEntry* next) {
        return new List::SEntry{next, &contexts[context], callback};
    };
    EXPECT_FALSE(list.Modify(nullptr) || list.Modify(node(0, List::RemoveMark, nullptr)));
    EXPECT_TRUE(list.Modify(node(1, write<0>, node(0, write<0>, nullptr))));
    EXPECT_TRUE(list.Modify(node(2, List::RemoveMark, node(2, write<0>, nullptr))));
    std::string calls;
    list.Iterate(0x89ABCDEFU, &calls);
    EXPECT_EQ(calls, "ab");
    EXPECT_TRUE(list.Modify(node(0, List::RemoveMark, nullptr)));
}

TEST(AddRemoveIterateList, ACallbackMayQueueAndMayThrow) {
    List list;
    list.Add(&list, [](void* context, std::uint32_t, void*) {
        static_cast<List*>(context)->Remove(context);
        static_cast<List*>(context)->Add(contexts, write<0>);
        // Refused: a pass would free the entry that is being called.
        EXPECT_EQ(blocksUsedBy([&] { static_cast<List*>(context)->Iterate(0, nullptr); }),
                  (Blocks{0, 0}));
        throw 1;
    });
    std::string calls;
    EXPECT_THROW(list.Iterate(0, nullptr), int);
    list.Iterate(0x89ABCDEFU, &calls);
    EXPECT_EQ(calls, "a");
}

TEST(AddRemoveIterateList, InvalidRequestsAndWantOfMemoryAreAnsweredWithFalse) {
    List list;
    EXPECT_FALSE(list.Add(nullptr, neverCalled) || list.Add(contexts, nullptr) ||
                 list.Remove(nullptr));
    memoryIsOut = true;
    const bool added = list.Add(contexts, neverCalled), removed = list.Remove(contexts);
    memoryIsOut = false;
    EXPECT_FALSE(added || removed);
    list.Iterate(0, nullptr);
}

TEST(AddRemoveIterateList, DestructionFreesWithoutCallingAndTurnsRequestsAway) {
    std::optional<List> list(std::in_place);
    list->Add(&contexts[0], [](void*, std::uint32_t, void*) {});
    list->Iterate(0, nullptr);
    list->Add(&contexts[1], neverCalled);
    list->Remove(&contexts[0]);
    bool turnedAway = false;
    whileFreeing = [&, dying = &*list] {
        turnedAway = !dying->Add(contexts, neverCalled) && !dying->Remove(contexts);
        dying->Iterate(0, nullptr);
    };
    const Blocks used = blocksUsedBy([&] { list.reset(); });
    EXPECT_TRUE(turnedAway);
    EXPECT_EQ(used, (Blocks{0, 3}));
}

}  // namespace
}  // namespace veltra
