#include "veltra/platform/process.h"

#include "veltra/platform/testing/environment.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

std::uint32_t kernelThread() {
    return static_cast<std::uint32_t>(::syscall(SYS_gettid));
}

bool tellsTheKernelsNumbers() {
    const Process& process = Process::current();
    return process.processId() == ::getpid() && process.threadId() == kernelThread() &&
           process.processId() == ::getpid() && process.threadId() == kernelThread() &&
           process.effectiveUserId() == ::geteuid();
}

TEST(Process, ThreadsAndForkedChildrenHaveTheirOwnNumbers) {
    EXPECT_TRUE(tellsTheKernelsNumbers());
    std::thread([] { EXPECT_TRUE(tellsTheKernelsNumbers()); }).join();
    const pid_t child = ::fork();
    if (child == 0) {
        const bool right = tellsTheKernelsNumbers();
        const pid_t grandchild = ::fork();
        if (grandchild == 0) ::_exit(tellsTheKernelsNumbers() ? 0 : 1);
        int status = 0;
        ::waitpid(grandchild, &status, 0);
        ::_exit(right && status == 0 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(tellsTheKernelsNumbers());
    EXPECT_FALSE(Process::current().isSetUserOrGroupId());
}

TEST(Process, TheNameIsTheOneThatTheHostSets) {
    EXPECT_EQ(Process::current().programName(), program_invocation_short_name);
    char* const before = program_invocation_short_name;
    std::array<char, 8> name{"renamed"};
    program_invocation_short_name = name.data();
    EXPECT_EQ(Process::current().programName(), "renamed");
    program_invocation_short_name = nullptr;
    EXPECT_EQ(Process::current().programName(), "");
    program_invocation_short_name = before;
}

TEST(Process, TheEnvironmentIsReadAnewAtEveryCall) {
    setEnvironment("VELTRA_TEST_VARIABLE", "");
    EXPECT_STREQ(environmentVariable("VELTRA_TEST_VARIABLE"), "");
    setEnvironment("VELTRA_TEST_VARIABLE", nullptr);
    EXPECT_EQ(environmentVariable("VELTRA_TEST_VARIABLE"), nullptr);
}

}  // namespace
}  // namespace veltra
