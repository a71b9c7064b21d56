// SPDX-License-Identifier: MIT
// The process is out of file descriptors, or nearly so.
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/linux/alert_helper.h"
#include "veltra/platform/linux/journal_log.h"
#include "veltra/platform/linux/json_preferences.h"
#include "veltra/platform/linux/symboliser.h"
#include "veltra/platform/memory_system.h"
#include "veltra/platform/testing/child_process.h"

#include <fcntl.h>
#include <sys/resource.h>

namespace veltra {
namespace {

// Each opens what it opens, and tells whether it answered as it should without any descriptor.
constexpr bool (*kServices[])() = {
    [] {
        MemorySystem& system = MemorySystem::current();
        const auto events = system.openEvents("/proc/pressure/memory", seconds(1.0));
        system.closeEvents(events);
        return events.all < 0 && events.timer < 0 && events.trigger < 0;
    },
    [] {
        JsonPreferences preferences("/proc/none/host.json");
        preferences.setValue("key", 1);
        return preferences.reload() == std::errc::too_many_files_open &&
               preferences.synchronise() == std::errc::too_many_files_open;
    },
    [] {
        JournalLog log("/none", "/none");
        log.send({});
        return log.descriptor() < 0;
    },
    [] {
        const std::uintptr_t address = 1;
        return symbolisedBy("cat", {&address, 1}, seconds(1.0)).empty() &&
               !askHelper({"", "", "", "", "", seconds(1.0)}, "/bin/true");
    },
    [] {
        FileSystem& files = FileSystem::current();
        FileSystem::Handle folder = FileSystem::kNone;
        std::vector<std::string> names;
        const auto error = files.open(FileSystem::kWorkingFolder, "/", FileSystem::Access::List,
                                      FileSystem::LastLink::Follow, folder);
        files.list(folder, names);
        files.close(folder);
        return error == std::errc::too_many_files_open && names.empty();
    }};

std::ptrdiff_t countOfOpen() {
    std::ptrdiff_t count = 0;
    for (int descriptor = 0; descriptor < 100; ++descriptor)
        count += ::fcntl(descriptor, F_GETFD) < 0 ? 0 : 1;
    return count;
}

TEST(WithoutDescriptors, ServicesAnswerForNothingAndLeaveNoneOpen) {
#ifdef VELTRA_SANITIZED
    GTEST_SKIP() << "sanitizers need descriptors of their own";
#endif
    for (const auto& service : kServices)
        for (rlim_t left = 0; left < 4; ++left)
            EXPECT_TRUE(testing::holdsInChild([left, service] {
                const int next = ::dup(STDERR_FILENO);
                ::close(next);
                const std::ptrdiff_t before = countOfOpen();
                rlimit limit{};
                ::getrlimit(RLIMIT_NOFILE, &limit);
                limit.rlim_cur = static_cast<rlim_t>(next) + left;
                const bool isLimited = ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
                const bool isRight = service() || left > 0;
                return isLimited && isRight && countOfOpen() == before;
            })) << &service - kServices
                << ", left " << left;
}

}  // namespace
}  // namespace veltra
