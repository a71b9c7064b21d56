// SPDX-License-Identifier: MIT
#include "veltra/platform/process.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/child_process.h"

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
    EXPECT_TRUE(testing::holdsInChild(
        [] { return tellsTheKernelsNumbers() && testing::holdsInChild(tellsTheKernelsNumbers); }));
    const pid_t unhandled = ::_Fork();  // runs no fork handlers
    if (unhandled == 0) ::_exit(tellsTheKernelsNumbers() ? 0 : 1);
    int status = -1;
    ::waitpid(unhandled, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(tellsTheKernelsNumbers());
}

}  // namespace
}  // namespace veltra
