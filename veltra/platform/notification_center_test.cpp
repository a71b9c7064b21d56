// SPDX-License-Identifier: MIT
#include "veltra/platform/notification_center.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

constinit const VLString kName = constantString(u"name");
constinit const VLString kSameName = constantString(u"name");
constinit const VLString kOther = constantString(u"other");

NotificationCenter center;
std::string calls;
bool isLeaving = false;

// Leaves, comes back behind the others, and posts.
void hear(void* context, const VLString* name, const void*) {
    calls += *static_cast<char*>(context);
    if (!isLeaving || name == &kOther) return;
    center.removeObserver(context);
    center.addObserver(context, hear, nullptr, nullptr);
    center.post(&kOther, nullptr);
}

TEST(NotificationCenter, CallsWhoAskedInOrderAndLetsThemComeAndGoMeanwhile) {
    char n = 'n', a = 'a', o = 'o';
    EXPECT_FALSE(center.addObserver(&n, nullptr, &kName, nullptr));
    center.addObserver(&n, hear, &kSameName, nullptr);
    center.addObserver(&a, hear, nullptr, nullptr);
    center.addObserver(&o, hear, &kName, &calls);
    center.post(&kName, &calls);
    center.post(&kName, nullptr);
    center.post(&kOther, &calls);
    center.post(nullptr, &calls);
    EXPECT_EQ(calls, "naonaa");
    center.removeObserver(&o);
    isLeaving = true;
    calls.clear();
    center.post(&kName, nullptr);
    EXPECT_EQ(calls, "nanana");
    isLeaving = false;
    center.post(&kOther, nullptr);
    EXPECT_EQ(calls, "nananana");
}

}  // namespace
}  // namespace veltra
