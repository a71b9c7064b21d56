// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/crash_reporter_info.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

void set(const char* text) {
    const VLString* const string = VLStringCreateWithCString(text);
    VLSetCrashReporterInfo(string);
    VLStringRelease(string);
}

std::string present() {
    const char* const text = ___crashreporter_info__.load();
    return text != nullptr ? text : "none";
}

// That the text before is freed, once, is what the sanitizers see.
TEST(CrashReporterInfo, HoldsTheLastText) {
    EXPECT_EQ(present(), "none");
    for (const char* text : {"Song.vlt", "", "\xE2\x99\xAA \xF0\x9D\x84\x9E in C"}) {
        set(text);
        EXPECT_EQ(present(), text);
    }
    VLSetCrashReporterInfo(nullptr);
    EXPECT_EQ(present(), "none");

    const auto setManyTimes = [](const char* text) {
        for (int i = 0; i < 1000; ++i)
            set(text);
    };
    std::thread other(setManyTimes, "other");
    setManyTimes("this");
    other.join();
    EXPECT_TRUE(present() == "this" || present() == "other");
    VLSetCrashReporterInfo(nullptr);
}

}  // namespace
}  // namespace veltra
