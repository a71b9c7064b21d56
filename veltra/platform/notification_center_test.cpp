#include "veltra/platform/notification_center.h"

#include "veltra/platform/detail/string_object_text.h"

#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

constinit const VLString kName = constantString(u"name");
constinit const VLString kSameName = constantString(u"name");
constinit const VLString kOther = constantString(u"other");

struct Listener {
    char letter;
    std::string* calls;
    NotificationCenter* center;
    bool leaves = false;

    static void hear(void* context, const VLString*, const void*) {
        auto& self = *static_cast<Listener*>(context);
        *self.calls += self.letter;
        if (!self.leaves) return;
        self.center->removeObserver(context);
        self.center->addObserver(context, hear, nullptr, nullptr);
        self.leaves = false;
        self.center->post(&kOther, nullptr);
    }
};

TEST(NotificationCenter, CallsWhoAskedForTheNameAndTheObjectInOrder) {
    NotificationCenter center;
    std::string calls;
    Listener any{'a', &calls, &center}, named{'n', &calls, &center}, about{'o', &calls, &center};
    EXPECT_FALSE(center.addObserver(&any, nullptr, &kName, nullptr));
    EXPECT_TRUE(center.addObserver(&named, Listener::hear, &kSameName, nullptr));
    EXPECT_TRUE(center.addObserver(&any, Listener::hear, nullptr, nullptr));
    EXPECT_TRUE(center.addObserver(&about, Listener::hear, &kName, &calls));
    center.post(&kName, &calls);
    center.post(&kName, nullptr);
    center.post(&kOther, &calls);
    center.post(nullptr, &calls);
    EXPECT_EQ(calls, "naonaa");
    center.removeObserver(&named);
    center.post(&kName, nullptr);
    EXPECT_EQ(calls, "naonaaa");
}

TEST(NotificationCenter, ObserversMayLeaveComeAndPostWhileTheyAreCalled) {
    NotificationCenter center;
    std::string calls;
    Listener first{'1', &calls, &center, true}, second{'2', &calls, &center, true};
    center.addObserver(&first, Listener::hear, nullptr, nullptr);
    center.addObserver(&second, Listener::hear, nullptr, nullptr);
    center.post(&kName, nullptr);  // 1 goes, comes back and posts: 2 goes, comes back, posts: 1, 2
    EXPECT_EQ(calls, "12121");
    calls.clear();
    center.post(&kName, nullptr);
    EXPECT_EQ(calls, "12");
}

}  // namespace
}  // namespace veltra
