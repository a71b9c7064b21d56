#include "veltra/audio/add_remove_iterate_list.h"

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>

namespace veltra {
namespace {

using List = CAddRemoveIterateList;

#ifdef VELTRA_SANITIZED
constexpr std::size_t kSmallStack = 1U << 20U;  // room for the tools' own frames and red zones
#else
constexpr std::size_t kSmallStack = 1U << 16U;
#endif

char contexts[] = "abcd";  // a context is the letter that it points to

void writeSmall(void* context, std::uint32_t message, void* data) {
    EXPECT_EQ(message, 0x89ABCDEFU);
    static_cast<std::string*>(data)->push_back(*static_cast<char*>(context));
}

TEST(AddRemoveIterateList, AppliesRequestsInTheOrderQueuedAtTheNextIterate) {
    // +x adds, -x removes, a dot iterates; what is called follows, a dot after each pass.
    constexpr std::array<std::pair<const char*, const char*>, 9> kScripts{{
        {".", "."},                          // nothing there
        {"+a-a.", "."},                      // added and removed before any pass
        {"-a+a..", "a.a."},                  // removed first, then added: stays
        {"+a.-b.", "a.a."},                  // not there
        {"+a.-a.+b.", "a..b."},              // the last one goes, the list still works
        {"+a+b+c.-c+d.-a.", "abc.abd.bd."},  // tail and head
        {"+a+b+a+a.-a.", "abaa.b."},         // one removal, all entries of the context
        {"+b+a+a.-a+c.", "baa.bc."},         // a trailing run: the tail goes back
        {"+a+b-a-b+c-c+d.-d.", "d.."},
    }};
    for (const auto& [script, expected] : kScripts) {
        List list;
        std::string calls;
        for (const char* step = script; *step != '\0'; ++step) {
            if (*step == '.') {
                list.Iterate(0x89ABCDEFU, &calls);
                calls += '.';
                continue;
            }
            const bool adds = *step++ == '+';
            char* context = &contexts[*step - 'a'];
            EXPECT_TRUE(adds ? list.Add(context, writeSmall) : list.Remove(context));
        }
        EXPECT_EQ(calls, expected) << script;
    }
}

TEST(AddRemoveIterateList, ModifyTakesTheNewestFirstAndTellsWhetherTheListChanged) {
    List list;
    const auto node = [](int context, List::Callback callback, List::SEntry* next) {
        return new List::SEntry{next, &contexts[context], callback};
    };
    EXPECT_FALSE(list.Modify(nullptr));
    EXPECT_FALSE(list.Modify(node(0, List::RemoveMark, nullptr)));
    EXPECT_TRUE(list.Modify(node(1, writeSmall, node(0, writeSmall, nullptr))));
    EXPECT_TRUE(list.Modify(node(2, List::RemoveMark, node(2, writeSmall, nullptr))));
    std::string calls;
    list.Iterate(0x89ABCDEFU, &calls);
    EXPECT_EQ(calls, "ab");
    EXPECT_TRUE(list.Modify(node(0, List::RemoveMark, nullptr)));
}

TEST(AddRemoveIterateList, ACallbackMayQueueAndMayThrow) {
    List list;
    list.Add(&list, [](void* context, std::uint32_t, void*) {
        auto& self = *static_cast<List*>(context);
        self.Remove(context);
        self.Add(contexts, writeSmall);
        throw 1;
    });
    std::string calls;
    EXPECT_THROW(list.Iterate(0, nullptr), int);
    list.Iterate(0x89ABCDEFU, &calls);
    EXPECT_EQ(calls, "a");
}

TEST(AddRemoveIterateList, DestructionWaitsForThePassInProgress) {
    struct Pass {
        std::atomic<bool> begun{false}, destroying{false};
        bool ended = false;  // not atomic: the destructor must order it
    } pass;
    auto list = std::make_unique<List>();
    list->Add(&pass, [](void* context, std::uint32_t, void*) {
        auto& running = *static_cast<Pass*>(context);
        running.begun = true;
        while (!running.destroying)
            std::this_thread::yield();
        for (int turn = 0; turn < 1000; ++turn)
            std::this_thread::yield();
        running.ended = true;
    });
    std::thread audio([iterated = list.get()] { iterated->Iterate(0, nullptr); });
    while (!pass.begun)
        std::this_thread::yield();
    pass.destroying = true;
    list.reset();
    EXPECT_TRUE(pass.ended);
    audio.join();
}

constexpr std::uint32_t kProducers = 8;
constexpr std::uint32_t kEntries = 100'000;  // of each producer
constexpr std::uint32_t kLive = 16;          // at most, of each producer

// Passes are numbered. `begun` is raised before a pass, `ended` after it, so that a producer can
// tell which passes owe a call to an entry and which may not call it any more.
struct Passes {
    std::atomic<std::uint32_t> begun{0}, ended{0};
    std::array<std::uint32_t, kProducers> lastIndex{};  // of each producer in this pass, plus one
    int faults = 0;
};

struct Entry {
    std::uint32_t producer = 0, index = 0;
    std::uint32_t calls = 0, owed = 0, possible = 0;
    std::atomic<std::uint32_t> lastPass{~0U};  // the last that may call it
};

void checkEntry(void* context, std::uint32_t pass, void* data) {
    auto& entry = *static_cast<Entry*>(context);
    auto& passes = *static_cast<Passes*>(data);
    auto& last = passes.lastIndex[entry.producer];
    passes.faults += entry.index < last ? 1 : 0;  // out of order, or called twice
    passes.faults += pass > entry.lastPass ? 1 : 0;
    last = entry.index + 1;
    ++entry.calls;
}

TEST(AddRemoveIterateList, ManyProducersLoseNothingAndNothingRemovedIsCalled) {
    List list;
    Passes passes;
    std::atomic<std::uint32_t> running{kProducers};
    std::vector<std::vector<Entry>> entries(kProducers);
    for (auto& own : entries)
        own = std::vector<Entry>(kEntries);

    const auto produce = [&](std::uint32_t producer) {
        auto& own = entries[producer];
        for (std::uint32_t i = 0; i < kEntries; ++i) {
            if (i % 256 == 0) {  // or the passes come too seldom to owe anything
                const std::uint32_t seen = passes.ended;
                while (passes.ended == seen)
                    std::this_thread::yield();
            }
            if (i >= kLive) {
                Entry& old = own[i - kLive];
                const std::uint32_t ended = passes.ended;
                list.Remove(&old);
                old.lastPass = passes.begun.load();
                old.owed = ended > old.owed ? ended - old.owed : 0;
                old.possible = old.lastPass - old.possible;
            }
            own[i].producer = producer;
            own[i].index = i;
            own[i].possible = passes.ended;  // a pass that has ended cannot call it
            list.Add(&own[i], checkEntry);
            own[i].owed = passes.begun;  // a pass that begins from now on must
        }
        --running;
    };
    const auto iterate = [&] {
        passes.lastIndex = {};
        const std::uint32_t pass = ++passes.begun;
        list.Iterate(pass, &passes);
        ++passes.ended;
    };
    std::vector<std::thread> producers;
    for (std::uint32_t i = 0; i < kProducers; ++i)
        producers.emplace_back(produce, i);
    while (running > 0)
        iterate();
    for (std::thread& producer : producers)
        producer.join();

    for (auto& own : entries) {
        for (std::uint32_t i = 0; i < kEntries - kLive; ++i) {
            if (own[i].calls < own[i].owed || own[i].calls > own[i].possible) ++passes.faults;
        }
        for (std::uint32_t i = kEntries - kLive; i < kEntries; ++i)
            own[i].calls = 0;
    }
    iterate();
    for (const auto& own : entries) {
        std::uint32_t called = 0;
        for (std::uint32_t i = kEntries - kLive; i < kEntries; ++i) {
            called += own[i].calls;
        }
        EXPECT_EQ(called, kLive);
    }
    EXPECT_EQ(passes.faults, 0);
}

TEST(AddRemoveIterateList, AMillionRequestsAreAppliedOnASmallStack) {
    List list;
    std::uint32_t called = 0;
    const auto countUp = [](void*, std::uint32_t, void* data) {
        ++*static_cast<std::uint32_t*>(data);
    };
    const auto onSmallStack = [&] {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
        std::pair argument(&list, &called);
        const auto run = [](void* raw) -> void* {
            const auto [iterated, count] = *static_cast<decltype(argument)*>(raw);
            iterated->Iterate(0, count);
            return nullptr;
        };
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, run, &argument), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
    };
    for (int i = 0; i < 1'000'000; ++i)
        list.Add(&contexts[i % 2], countUp);
    onSmallStack();
    EXPECT_EQ(called, 1'000'000U);
    list.Remove(&contexts[0]);
    onSmallStack();
    EXPECT_EQ(called, 1'500'000U);
}

}  // namespace
}  // namespace veltra
