#include "veltra/platform/process.h"

#include "veltra/platform/testing/child_process.h"

#include <cerrno>
#include <thread>

#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace veltra {
namespace {

bool tellsTheKernelsNumbers() {
    const Process& process = Process::current();
    bool isRight = process.effectiveUserId() == ::geteuid() && !process.isSetUserOrGroupId();
    for (int round = 0; round < 2; ++round)
        isRight = isRight && process.processId() == ::getpid() &&
                  process.threadId() == static_cast<std::uint32_t>(::syscall(SYS_gettid));
    return isRight;
}

TEST(Process, ThreadsAndForkedChildrenHaveTheirOwnNumbers) {
    EXPECT_TRUE(tellsTheKernelsNumbers());
    std::thread([] { EXPECT_TRUE(tellsTheKernelsNumbers()); }).join();
    EXPECT_EQ(testing::inChild([] {
                  return tellsTheKernelsNumbers() && testing::inChild(tellsTheKernelsNumbers) == 0;
              }),
              0);
    EXPECT_TRUE(tellsTheKernelsNumbers());
}

TEST(Process, TheNameIsTheOneThatTheHostSets) {
    char name[] = "renamed";
    char* const before = std::exchange(program_invocation_short_name, name);
    EXPECT_EQ(Process::current().programName(), "renamed");
    program_invocation_short_name = nullptr;
    EXPECT_EQ(Process::current().programName(), "");
    program_invocation_short_name = before;
}

}  // namespace
}  // namespace veltra
