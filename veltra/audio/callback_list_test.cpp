// SPDX-License-Identifier: MIT
#include "veltra/audio/callback_list.h"

#include "veltra/audio/callback_list_c.h"
#include "veltra/audio/detail/request_chain.h"
#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using List = CallbackList;

std::vector<const void*> called(List& list) {
    std::vector<const void*> contexts;
    list.iterate(0, &contexts);
    return contexts;
}

void note(void* context, std::uint32_t, void* data) {
    static_cast<std::vector<const void*>*>(data)->push_back(context);
}

TEST(CallbackList, ATicketIsSafeOncePassOneThatBeganAfterTheRemovalHasAppliedIt) {
    List list;
    int context = 0;
    EXPECT_FALSE(list.add(nullptr, note) || list.add(&context, nullptr) || list.remove(nullptr));
    EXPECT_TRUE(list.add(&context, note));
    EXPECT_EQ(called(list).size(), 1U);
    const auto ticket = list.remove(&context);
    EXPECT_FALSE(ticket->isSafe());
    EXPECT_EQ(list.collect(), 0U);
    EXPECT_TRUE(called(list).empty() && ticket->isSafe());
    EXPECT_EQ(list.collect(), 2U);
    EXPECT_EQ(list.collect(), 0U);

    struct Inner {
        List& list;
        std::optional<List::Ticket> ticket;
    } inner{list, {}};
    list.add(&inner, [](void* data, std::uint32_t, void*) {
        auto& self = *static_cast<Inner*>(data);
        self.ticket = self.list.remove(data);
        self.list.iterate(0, nullptr);  // refused, or it would free what the outer pass reads
        EXPECT_FALSE(self.ticket->isSafe());
        throw 1;
    });
    EXPECT_THROW(list.iterate(0, nullptr), int);
    EXPECT_FALSE(inner.ticket->isSafe());
    list.iterate(0, nullptr);
    EXPECT_TRUE(inner.ticket->isSafe());
}

TEST(CallbackList, NodesOfTheHostAreInUseUntilTheListIsDoneWithThem) {
    List::Node entry, other, removal, again;
    int context = 0;
    {
        List list;
        EXPECT_TRUE(list.add(entry, &context, note));
        EXPECT_FALSE(list.add(entry, &context, note) || list.remove(entry, &context).has_value());
        EXPECT_TRUE(list.add(other, &context, note));
        EXPECT_EQ(called(list).size(), 2U);
        EXPECT_TRUE(list.remove(removal, &context) && list.remove(again, &context));
        EXPECT_FALSE(entry.isFree() || other.isFree() || removal.isFree() || again.isFree());
        EXPECT_TRUE(called(list).empty());
        EXPECT_TRUE(entry.isFree() && other.isFree() && removal.isFree() && again.isFree());
        EXPECT_EQ(list.collect(), 0U);
        EXPECT_TRUE(list.add(removal, &context, note) && list.add(entry, &context, note));
        EXPECT_EQ(called(list).size(), 2U);
        list.remove(other, &context);
    }
    EXPECT_TRUE(entry.isFree() && other.isFree() && removal.isFree());
}

// Or a host that goes by a removal's node would destroy entries that are still linked.
TEST(CallbackList, RemovalsAreGivenBackAfterAllThatTheyTookOut) {
    using detail::SEntry;
    int context = 0;
    SEntry entry{nullptr, &context, note}, queued = entry;
    SEntry removal{&queued, &context, CAddRemoveIterateList::RemoveMark}, again = removal;
    again.next = &removal;
    detail::ActiveEntries active{&entry, &entry};
    std::vector<const SEntry*> given;
    EXPECT_TRUE(
        detail::applyRequests(&again, active, [&](SEntry* node) { given.push_back(node); }));
    EXPECT_THAT(given, ::testing::ElementsAre(&queued, &entry, &again, &removal));
    EXPECT_TRUE(active.head == nullptr && active.tail == nullptr);
}

// Against the plain list of a model that applies its requests one by one.
TEST(CallbackList, AnyMixtureOfRequestsIsAppliedAsIfOneByOneInTheirOrder) {
    std::minstd_rand random(11);
    const auto contexts = std::make_unique<std::array<char, 1000>>();
    for (const std::size_t most : {3U, 40U, 1000U}) {
        std::deque<List::Node> nodes;
        List list;
        std::vector<const void*> expected;
        for (int request = 0; request < 20'000; ++request) {
            char* const context = &(*contexts)[random() % most];
            const bool isOwn = random() % 2 == 0;
            if (random() % 3 == 0) {
                isOwn ? list.remove(nodes.emplace_back(), context) : list.remove(context);
                std::erase(expected, context);
            } else {
                isOwn ? list.add(nodes.emplace_back(), context, note) : list.add(context, note);
                expected.push_back(context);
            }
            if (random() % 2000 == 0) {
                ASSERT_EQ(called(list), expected);
            }
        }
        ASSERT_EQ(called(list), expected);
    }
}

// Heap contexts that die as soon as they may, each with its nodes in itself. The tools that watch
// memory and threads tell when one is called after its death.
TEST(CallbackList, ContextsMayDieWhenTheirTicketsAreSafe) {
    struct Voice {
        explicit Voice(int* first) : calls(first) {}
        static void render(void* context, std::uint32_t, void*) {
            ++*static_cast<Voice*>(context)->calls;
        }
        int* calls;  // not atomic: read when the voice is gone
        List::Node entry, removal;
    };
    constexpr int kProducers = 2, kVoices = 200;
    List list;
    std::atomic<int> running{kProducers};
    std::atomic<int> passes{0};
    std::atomic<std::size_t> collected{0};
    std::array<int, kProducers> heard{};
    const auto produce = [&](int producer) {
        for (int number = 0; number < kVoices; ++number) {
            int calls = 0;
            auto voice = std::make_unique<Voice>(&calls);
            const bool isOwn = number % 2 == 0;
            isOwn ? list.add(voice->entry, voice.get(), Voice::render)
                  : list.add(voice.get(), Voice::render);
            const int seen = passes;
            while (number % 4 == 0 && passes < seen + 2)  // one of them is whole
                std::this_thread::yield();
            const auto ticket =
                isOwn ? list.remove(voice->removal, voice.get()) : list.remove(voice.get());
            // By the ticket, or by the nodes.
            while (isOwn && number % 3 == 0 ? !voice->removal.isFree() : !ticket->isSafe())
                std::this_thread::yield();
            voice.reset();
            heard[static_cast<std::size_t>(producer)] += calls > 0;
            collected += list.collect();
        }
        --running;
    };
    std::vector<std::jthread> producers;
    for (int producer = 0; producer < kProducers; ++producer)
        producers.emplace_back(produce, producer);
    for (; running > 0; ++passes)
        list.iterate(0, nullptr);
    producers.clear();
    EXPECT_EQ(collected + list.collect(), std::size_t{kProducers} * kVoices);  // half of two each
    EXPECT_TRUE(called(list).empty());
    for (const int count : heard)
        EXPECT_GT(count, 0);
}

TEST(CallbackList, FromCNullIsRefusedAndAFailedRemovalIsNeverSafe) {
    VLCallbackList* const list = VLCallbackListCreate();
    ASSERT_NE(list, nullptr);
    int context = 0;
    VLCallbackNode node, removal;
    std::memset(&node, 0xFF, sizeof node);
    VLCallbackNodeInit(&node);
    VLCallbackNodeInit(&removal);
    VLCallbackTicket ticket{list, 0};
    EXPECT_FALSE(VLCallbackListAdd(nullptr, &context, note) ||
                 VLCallbackListAdd(list, nullptr, note) ||
                 VLCallbackListAddWithNode(list, nullptr, &context, note) ||
                 VLCallbackListRemove(list, nullptr, &ticket) ||
                 VLCallbackListRemoveWithNode(list, nullptr, &context, &ticket) ||
                 VLCallbackNodeIsFree(nullptr) || VLCallbackTicketIsSafe(nullptr) ||
                 VLCallbackListAddWithNode(nullptr, &node, &context, note) ||
                 VLCallbackListAddWithNode(list, &node, nullptr, note) ||
                 VLCallbackListAddWithNode(list, &node, &context, nullptr) ||
                 VLCallbackListRemove(nullptr, &context, &ticket) ||
                 VLCallbackListRemoveWithNode(nullptr, &node, &context, &ticket) ||
                 VLCallbackListRemoveWithNode(list, &node, nullptr, &ticket) ||
                 !VLCallbackNodeIsFree(&node));
    std::vector<const void*> contexts;
    VLCallbackNodeInit(nullptr);
    VLCallbackListIterate(nullptr, 0, &contexts);
    VLCallbackListIterate(list, 0, &contexts);
    EXPECT_FALSE(VLCallbackTicketIsSafe(&ticket) || !contexts.empty());

    EXPECT_TRUE(VLCallbackListAddWithNode(list, &node, &context, note));
    EXPECT_TRUE(VLCallbackListAdd(list, &context, note) && !VLCallbackNodeIsFree(&node));
    VLCallbackListIterate(list, 0, &contexts);
    EXPECT_EQ(contexts.size(), 2U);
    EXPECT_TRUE(VLCallbackListRemoveWithNode(list, &removal, &context, &ticket));
    EXPECT_FALSE(VLCallbackTicketIsSafe(&ticket));
    VLCallbackListIterate(list, 0, &contexts);
    EXPECT_TRUE(VLCallbackTicketIsSafe(&ticket) && VLCallbackNodeIsFree(&node));
    EXPECT_TRUE(VLCallbackListRemove(list, &context, nullptr) && contexts.size() == 2);
    VLCallbackListIterate(list, 0, &contexts);
    EXPECT_EQ(VLCallbackListCollect(list) + VLCallbackListCollect(nullptr), 2U);
    VLCallbackListDestroy(list);
}

}  // namespace
}  // namespace veltra
