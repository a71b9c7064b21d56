// SPDX-License-Identifier: MIT
#include "veltra/platform/machine_lines.h"

#include "veltra/platform/testing/fake_memory_system.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

using testing::FakeMemorySystem;

std::map<std::string, std::string> machineLines() {
    std::map<std::string, std::string> lines;
    for (const MachineLine& line : platformMachineLines())
        EXPECT_TRUE(lines.emplace(line.name, line.text).second && !line.text.empty()) << line.name;
    return lines;
}

TEST(MachineLines, TellWhatMattersToSoundAndNotWhoseMachineItIs) {
    FakeMemorySystem system;
    const std::string cpu = "/sys/devices/system/cpu/cpu";
    system.files = {
        {"/proc/cpuinfo", "processor\t: 0\nmodel name\t: A \x1B Processor\xFF\n"},
        {cpu + "0/cache/index0/size", "32K\n"},
        {cpu + "0/cache/index0/level", "1\n"},
        {cpu + "0/cache/index0/type", "Data\n"},
        {cpu + "0/cache/index1/size", "1024K\n"},
        {cpu + "0/cache/index1/level", "2\n"},
        {cpu + "0/cache/index1/type", "Unified\n"},
        {cpu + "0/cpufreq/scaling_governor", "powersave\n"},
        {cpu + "2/cpufreq/scaling_governor", "performance\n"},
        {cpu + "3/cpufreq/scaling_governor", "powersave\n"},
        {cpu + "10/cpufreq/scaling_governor", "schedutil\n"},
        {"/sys/devices/system/cpu/present", "0-3,10\n"},
        {"/proc/sys/kernel/version", "#1 SMP PREEMPT_RT build@secret\n"},
        {"/proc/cmdline", "root=UUID=secret preempt=full quiet threadirqs\n"},
        {"/proc/self/limits",
         "Limit                     Soft Limit           Hard Limit           Units     \n"
         "Max locked memory         8192                 16384                bytes     \n"
         "Max processes             1                    1                    processes \n"
         "Max realtime priority     95                   95                             \n"},
        {"/proc/self/status", "Groups:\t29 1000 \n"},
        {"/etc/group", "audio:x:29:secret\nrealtime:x:2:\nsecret:x:1000:\n"},
        {"/proc/sys/vm/swappiness", "60\n"},
        {"/proc/asound/cards",
         " 0 [PCH            ]: HDA-Intel - HDA Intel PCH\n                      HDA at secret\n"
         " 1 [USB            ]: USB-Audio - Box - Two\n                      Box at usb-secret\n"},
    };
    std::map<std::string, std::string> lines = machineLines();
    lines.erase("timer resolution");
    const std::map<std::string, std::string> expected = {
        {"processor name", "A   Processor\xEF\xBF\xBD"},
        {"caches", "L1 data 32K, L2 1024K"},
        {"frequency governor", "powersave, performance, schedutil"},
        {"preemption", "PREEMPT_RT, preempt=full, threadirqs"},
        {"process limits", "locked memory 8192 (at most 16384), real-time priority 95"},
        {"real-time rights", "no rtkit, groups audio"},
        {"swappiness", "60"},
        {"sound cards", "HDA Intel PCH, Box - Two"},
    };
    EXPECT_EQ(lines, expected);

    system.files = {{"/proc/sys/kernel/sched_rt_runtime_us", "950000\n"},
                    {"/proc/sys/kernel/sched_rt_period_us", "1000000\n"},
                    {"/usr/share/dbus-1/system-services/org.freedesktop.RealtimeKit1.service", ""},
                    {"/proc/asound/cards", "--- no soundcards ---\n"}};
    lines = machineLines();
    EXPECT_TRUE(lines.size() == 2 && lines.count("timer resolution") == 1);
    EXPECT_EQ(lines["real-time rights"],
              "rtkit is installed, in no group for sound, 950000 of 1000000 microseconds for "
              "real-time threads");
}

}  // namespace
}  // namespace veltra
