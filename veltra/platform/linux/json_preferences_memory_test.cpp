// Every allocation fails once, and from some point on all of them do.
#include "veltra/platform/linux/json_preferences.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <new>

#include <gtest/gtest.h>

namespace {

thread_local long s_untilFailure = -1;  // allocations that still succeed; negative: all of them
thread_local bool s_isSticky = false;

bool isOutOfMemory() {
    if (s_untilFailure < 0) return false;
    if (s_untilFailure > 0) return --s_untilFailure, false;
    if (!s_isSticky) s_untilFailure = -1;
    return true;
}

}  // namespace

// Not inlined, or the compiler takes the pairs for mismatched.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* block = isOutOfMemory() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace veltra {
namespace {

TEST(JsonPreferencesWithoutMemory, AnswersNeutrallyAndLosesNothing) {
    const testing::TemporaryFolder folder;
    const std::string file = folder / "host.json";
    const std::string longText(100, 'x');
    const PropertyValue added = PropertyValue::Array{longText, 1};
    for (const bool isSticky : {false, true}) {
        bool isMemoryEnough = false;
        for (long allocations = 0; !isMemoryEnough; ++allocations) {
            std::ofstream(file) << R"({"old": [{"a": {"$data": "QUI="}}, ")" << longText << "\"]}";
            JsonPreferences preferences(file);
            s_isSticky = isSticky;
            s_untilFailure = allocations;
            const PropertyValue old = preferences.value("old");
            const bool isSet = preferences.setValue("added", added);
            const std::error_code error = preferences.synchronise();
            isMemoryEnough = s_untilFailure > 0;
            s_untilFailure = -1;

            EXPECT_FALSE(preferences.takeDamageReport());
            EXPECT_TRUE(old.isNull() || old.asArray().size() == 2);
            EXPECT_TRUE(!error || error == std::errc::not_enough_memory);
            EXPECT_EQ(preferences.value("added"), isSet ? added : PropertyValue());
            EXPECT_FALSE(preferences.synchronise());
            const JsonPreferences reread(file);
            EXPECT_EQ(reread.value("old").depth(), 2U);
            EXPECT_EQ(reread.value("added"), isSet ? added : PropertyValue());
            EXPECT_FALSE(isMemoryEnough && (old.isNull() || !isSet || error));
        }
    }
}

}  // namespace
}  // namespace veltra
