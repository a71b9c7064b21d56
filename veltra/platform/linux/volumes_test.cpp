// SPDX-License-Identifier: MIT
#include "veltra/platform/volumes.h"

#include "veltra/platform/linux/mount_table.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

std::string textOf(const std::optional<Mount>& mount) {
    if (!mount) return "none";
    const Volume& volume = mount->volume;
    return volume.path + "|" + volume.description + "|" + volume.type + "|" + mount->deviceName +
           (volume.isWritable ? "|rw" : "|ro") + (volume.isUnmountable ? "|can go" : "|stays");
}

TEST(Volumes, AreFoundInTheTableByTheirNumber) {
    constexpr std::string_view kTable =
        "x\n"
        "1 0 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw,errors=remount-ro\n"
        "31 1 11:0 / /media/My\\040disc ro,nosuid shared:9 master:1 - iso9660 /dev/sr0 ro\n"
        "33 1 0:50 / /a\\134b\\04\\999 ro - tmpfs back\\040ed rw,size=5k\n"
        "34 1 0:51 / /sub rw - btrfs /dev/sdb1 rw,rox,ro\n"
        "35 1 0:52 / /cut rw shared:1\n"
        "36 1 0:53 / /end rw - tmpfs none rw";
    const std::pair<std::uint64_t, const char*> cases[] = {
        {1, "/|/dev/sda1|ext4|8:1|rw|stays"},
        {31, "/media/My disc|/dev/sr0|iso9660|11:0|ro|can go"},
        {33, "/a\\b\\04\\999|back ed|tmpfs|0:50|ro|can go"},
        {34, "/sub|/dev/sdb1|btrfs|0:51|ro|can go"},
        {35, "none"},
        {36, "/end|none|tmpfs|0:53|rw|can go"},
        {3, "none"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(textOf(mountOfNumber(number, kTable)), text);
}

TEST(Volumes, AreRemovableAsTheirDiskIs) {
    const testing::TemporaryFolder folder;
    using Case = std::tuple<const char*, const char*, bool>;
    for (const auto& [number, disk, isRemovable] :
         {Case{"8:0", "sda", false}, Case{"8:16", "sdb", true}, Case{"8:17", "sdb/sdb1", true}}) {
        std::filesystem::create_directories(folder.path / "disks" / disk);
        std::filesystem::create_directory_symlink(folder.path / "disks" / disk,
                                                  folder.path / number);
        std::ofstream(folder.path / "disks" / std::string(disk, 3) / "removable") << isRemovable;
        EXPECT_EQ(isRemovableDevice(folder.path, number), isRemovable) << number;
    }
    EXPECT_FALSE(isRemovableDevice(folder.path, "0:50"));
}

TEST(Volumes, AreToBeHadOfThisMachine) {
    // In a changed root there may be no mount that holds it.
    const bool isRootMounted =
        testing::textOf("/proc/self/mounts").find(" / ") != std::string::npos;
    const std::optional<Volume> root = Volumes::current().volumeOfPath("/");
    ASSERT_EQ(root.has_value(), isRootMounted);
    EXPECT_TRUE(!root || (root->path == "/" && !root->isUnmountable));
    const std::optional<Volume> processes = Volumes::current().volumeOfPath("/proc/self/status");
    ASSERT_TRUE(processes);
    EXPECT_TRUE(processes->type == "proc" && processes->path == "/proc");
    EXPECT_FALSE(Volumes::current().volumeOfPath("/no such item"));
}

}  // namespace
}  // namespace veltra
