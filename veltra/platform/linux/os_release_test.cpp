// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/os_release.h"

#include "veltra/platform/application_facts.h"
#include "veltra/platform/testing/fake_memory_system.h"
#include "veltra/platform/testing/fake_system_queries.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

using testing::FakeMemorySystem;
using testing::FakeSystemQueries;

TEST(SystemVersion, ComesOutOfTheFileAsAShellWouldReadIt) {
    const std::array<const char*, 3> cases[] = {
        {"NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\n",
         "6.1.0-18-amd64", "Debian GNU/Linux 12 (Build 6.1.0-18-amd64)"},
        {"ID=arch\nBUILD_ID=rolling", "6.9", "arch rolling (Build rolling)"},
        {"", "6.9", "Linux 6.9 (Build 6.9)"},
        {"NAME=\nVERSION=\nVERSION_CODENAME=sid\nBUILD_ID=''\nIMAGE_VERSION=7", "6.9",
         "Linux sid (Build 7)"},
        {"NAME=One\nNAME=Two\n VERSION_ID=1\r\n#NAME=Three\nNAME Four\nB-AD=1\n=x\n", "6",
         "Two 1 (Build 6)"},
        {R"(NAME="a\"b\\c\$d\`e\nf")"
         "\nVERSION_ID='it\\s'\nBUILD_ID=a\\ b'c'\"d\"",
         "", "a\"b\\c$d`e\\nf it\\s (Build a bcd)"},
        {"NAME=Kept\nNAME=\"not closed\nVERSION_ID='3\"'", "6", "Kept 3\" (Build 6)"},
        {"NAME=\xFF\nVERSION_ID=1\\", "6", "\xEF\xBF\xBD 1\\ (Build 6)"},
        {"NAME=Nothing\nVERSION_ID=1", "", "Unknown"},
    };
    for (const auto& [osRelease, kernel, expected] : cases) {
        FakeMemorySystem system;
        FakeSystemQueries queries;
        queries.setText(SystemKey::KernelRelease, kernel);
        system.files["/usr/lib/os-release"] = osRelease;
        EXPECT_EQ(systemVersion(), expected) << osRelease;
        system.files["/etc/os-release"] = "NAME=First\nVERSION=2\nBUILD_ID=3";
        EXPECT_EQ(systemVersion(), "First 2 (Build 3)");
    }
}

TEST(SystemVersion, LooksAtSixtyFourKibibytesAtMostAndNeverAtHalfALine) {
    FakeMemorySystem system;
    FakeSystemQueries queries;
    EXPECT_EQ(systemVersion(), "Unknown");
    const std::string start = "NAME=A\nVERSION_ID=1\nBUILD_ID=2\n";
    for (const std::size_t before : {65'536U, 65'537U}) {  // the last byte of the late line
        std::string text = start + std::string(before - start.size() - 7, '#') + "\nNAME=B";
        ASSERT_EQ(text.size(), before);
        system.files["/etc/os-release"] = text;
        EXPECT_EQ(systemVersion(), before == 65'536 ? "B 1 (Build 2)" : "A 1 (Build 2)");
        system.files["/etc/os-release"] = text + "Beyond\n";
        EXPECT_EQ(systemVersion(), "A 1 (Build 2)");
    }
}

}  // namespace
}  // namespace veltra
