// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/symboliser.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;

class SymboliserTest : public ::testing::Test {
protected:
    ~SymboliserTest() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was left behind";
        EXPECT_EQ(errno, ECHILD);
    }
    std::string program(const std::string& script, fs::perms rights = fs::perms(0755)) const {
        return testing::putProgram(m_folder / "program", script, rights);
    }
    static std::string answerOf(const std::string& path, Nanoseconds time = seconds(60.0)) {
        const std::uintptr_t addresses[] = {0x10, UINTPTR_MAX};
        return symbolisedBy(path.c_str(), addresses, time);
    }
    std::string answer(const std::string& script, Nanoseconds time = seconds(60.0)) const {
        return answerOf(program(script), time);
    }
    testing::TemporaryFolder m_folder;
};

TEST_F(SymboliserTest, AnswersWithWhatTheProgramWritesWhateverBecomesOfIt) {
    const std::string largest = sizeof(void*) == 8 ? "0xffffffffffffffff" : "0xffffffff";
    EXPECT_EQ(answer("echo $0 $*"), m_folder / "program" + std::string(" -f -C -i -a -p ") +
                                        std::to_string(::getpid()) + " 0x10 " + largest + "\n");
    EXPECT_EQ(answer("echo half; kill -9 $$"), "half\n");
    EXPECT_EQ(answer("exec >&-; exec sleep 600"), "");
    EXPECT_EQ(answer("echo half; exec sleep 600", seconds(1.0)), "half\n");
    EXPECT_EQ(answer("yes").size() >> 20, 1u);
    // Somebody else holds its output open and writes nothing.
    EXPECT_EQ(answer("sleep 600 & echo $! >" + (m_folder / "other") + "; echo all"), "all\n");
    pid_t other = 0;
    std::ifstream(m_folder / "other") >> other;
    EXPECT_EQ(::kill(other, SIGKILL), 0);
    EXPECT_EQ(answerOf(program("echo x", fs::perms(0644))) + answerOf(m_folder / "missing"), "");
    EXPECT_EQ(symbolisedBy(program("echo x").c_str(), {}, seconds(60.0)), "");
}

TEST_F(SymboliserTest, GivesTheProgramTheEnvironmentWithoutServers) {
    setEnvironment("DEBUGINFOD_URLS", "http://localhost:1");
    setEnvironment("VELTRA_KEPT", "kept");
    EXPECT_EQ(answer("echo $DEBUGINFOD_URLS $VELTRA_KEPT; echo error >&2; cat"), "kept\n");
    setEnvironment("DEBUGINFOD_URLS", nullptr);
    setEnvironment("VELTRA_KEPT", nullptr);
}

}  // namespace
}  // namespace veltra
