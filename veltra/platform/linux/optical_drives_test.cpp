// SPDX-License-Identifier: MIT
#include "veltra/platform/optical_drives.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/optical_drive_lists.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/temporary_folder.h"

namespace veltra {
namespace {

std::string textOf(const std::vector<OpticalDrive>& drives) {
    std::string text;
    for (const OpticalDrive& drive : drives)
        text += drive.deviceName + " " + drive.className + "\n";
    return text;
}

TEST(OpticalDrives, AreReadFromTheKernelsTableByColumn) {
    const testing::TemporaryFolder folder;
    for (const char* name : {"sr10", "sr2", "sr0", "sra", "sr", "sda", "loop0"})
        std::filesystem::create_directories(folder.path / "block" / name);
    std::ofstream(folder / "info") << "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n"
                                      "drive name:\t\tsr2\tsr0\n"
                                      "Can read multisession:\t1\t1\n"
                                      "Can read DVD:\t\t0\t1\n\n";
    EXPECT_EQ(textOf(drivesOfKernel(folder / "block", folder / "info")),
              "sr0 IODVDServices\nsr2 IOCDServices\nsr10 IOCDServices\n");
    EXPECT_EQ(textOf(drivesOfKernel(folder / "block", folder / "none")),
              "sr0 IOCDServices\nsr2 IOCDServices\nsr10 IOCDServices\n");
    EXPECT_TRUE(drivesOfKernel(folder / "none", folder / "info").empty());
}

// Run by the test below, in a process that sees other devices.
TEST(OpticalDrives, DISABLED_ListOfThisProcess) {
    std::printf("[%s]\n", textOf(OpticalDrives::current().list()).c_str());
}

// A drive as the device manager knows it.
[[maybe_unused]] std::string drive(const char* name, const char* properties) {
    return std::string("P: /devices/pci0/ata1/block/") + name + "\nN: " + name +
           "\nE: DEVNAME=/dev/" + name + "\nE: SUBSYSTEM=block\nE: DEVTYPE=disk\n" + properties +
           "A: removable=1\n\n";
}

TEST(OpticalDrives, AreThoseOfTheDeviceManager) {
#if !defined(VELTRA_UDEV)
    GTEST_SKIP() << "needs libudev";
#else
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    if (std::system("umockdev-run --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "needs umockdev";
#if defined(VELTRA_SANITIZED)
    GTEST_SKIP() << "umockdev must be loaded before the sanitizer";
#endif
    const testing::TemporaryFolder folder;
    std::ofstream(folder / "drives.umockdev")
        << drive("sr0", "E: ID_CDROM=1\nE: ID_CDROM_DVD=1\nE: ID_CDROM_BD=1\n")
        << drive("sr1", "E: ID_CDROM=1\n") << drive("sda", "E: ID_BUS=ata\n")
        << drive("sr3", "E: ID_CDROM=1\nE: ID_CDROM_DVD=1\nE: ID_CDROM_BD=0\n");
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string command = "umockdev-run --device " + (folder / "drives.umockdev") + " -- " +
                                program + " --gtest_also_run_disabled_tests" +
                                " --gtest_filter=*DISABLED_ListOfThisProcess 2>&1";
    const std::string text = testing::outputOf(command);
    EXPECT_NE(text.find("[sr0 IOBDServices\nsr1 IOCDServices\nsr3 IODVDServices\n]"),
              std::string::npos)
        << text;
#endif
}

}  // namespace
}  // namespace veltra
