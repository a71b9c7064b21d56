// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/journal_log.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace veltra {
namespace {

using namespace std::string_literals;

class Service {
public:
    explicit Service(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        ::unlink(path.c_str());
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    ~Service() { ::close(m_socket); }

    // The next datagram, or what the sealed file in it holds; "-" when there is none.
    std::string take() {
        std::string text(300'000, '\0');
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
        iovec piece{text.data(), text.size()};
        msghdr message{nullptr, 0, &piece, 1, control, sizeof control, 0};
        const ssize_t length = ::recvmsg(m_socket, &message, 0);
        if (length < 0) return "-";
        text.resize(static_cast<std::size_t>(length));
        if (const cmsghdr* header = CMSG_FIRSTHDR(&message)) {
            int file = -1;
            std::memcpy(&file, CMSG_DATA(header), sizeof file);
            struct stat status {};
            ::fstat(file, &status);
            text.resize(static_cast<std::size_t>(status.st_size));
            EXPECT_EQ(::pread(file, text.data(), text.size(), 0), status.st_size);
            EXPECT_EQ(::fcntl(file, F_GET_SEALS),
                      F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE);
            ::close(file);
        }
        return text;
    }

private:
    const int m_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
};

LogRecord record(std::string_view message) {
    LogRecord made;
    made.facility = "tag";
    made.fields[LogRecord::ReadUserId].value = "1000";
    made.fields[LogRecord::Level].value = "3";
    made.fields[LogRecord::Message].value = message;
    return made;
}

std::string sent(const std::string& message) {
    return "READUID=1000\nLEVEL=3\nPRIORITY=3\nMESSAGE=" + message + "\nSYSLOG_IDENTIFIER=tag\n";
}

std::string note(const std::string& lost) {
    return "READUID=1000\nLEVEL=4\nPRIORITY=4\nMESSAGE=log records lost here: " + lost +
           "\nSYSLOG_IDENTIFIER=tag\n";
}

class JournalLogTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    const std::string syslogPath = folder / "syslog";
    const std::string path = folder / "journal";
    JournalLog log{path.c_str(), syslogPath.c_str()};
};

TEST_F(JournalLogTest, SendsKeysInOrderUnderNamesThatTheJournalTakes) {
    Service journal(path);
    const std::string lines(128, '\n'), longTag(5000, 't');
    LogRecord full = record(lines);
    full.fields[LogRecord::LocalTime].value = "2024-01-31 09:05:07.042";
    full.fields[LogRecord::Thread].value = "a0b";
    full.facility = longTag;
    log.send(full);
    EXPECT_EQ(journal.take(),
              "CFLOG_LOCAL_TIME=2024-01-31 09:05:07.042\nCFLOG_THREAD=a0b\nREADUID=1000\nLEVEL=3\n"
              "PRIORITY=3\nMESSAGE\n\x80\0\0\0\0\0\0\0"s +
                  lines + "\nSYSLOG_IDENTIFIER=" + longTag + "\n");
}

TEST_F(JournalLogTest, WhatIsTooLongForADatagramGoesAsASealedFileWithinTheLimitOnFileSizes) {
    Service journal(path);
    const std::string message(1 << 20, 'x');
    log.send(record(message));
    EXPECT_EQ(journal.take(), sent(message));
    EXPECT_TRUE(testing::holdsInChild([&] {
        const rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        log.send(record(message));
        return true;
    }));
    EXPECT_EQ(journal.take(), "-");
}

TEST_F(JournalLogTest, AFullQueueARestartedServiceAndAForkedChildUseTheSocketAsItIs) {
    testing::ManualClocks clocks;
    log.send(record("nobody listens"));
    const int descriptor = log.descriptor();
    EXPECT_GE(descriptor, 0);
    for (const char* message : {"first life", "second life"}) {
        Service journal(path);
        log.send(record("nobody is asked for a second"));
        EXPECT_TRUE(log.skipRecord());
        EXPECT_EQ(journal.take(), "-");
        clocks.now += milliseconds(1100);
        EXPECT_FALSE(log.skipRecord());
        EXPECT_TRUE(testing::holdsInChild([&] { return log.send(record("child")), true; }));
        EXPECT_EQ(journal.take(), sent("child")) << "what the parent lost is the parent's to tell";
        log.send(record(message));
        EXPECT_EQ(journal.take(), note("3"));
        EXPECT_EQ(journal.take(), sent(message));
        for (int count = 0; count < 2000; ++count)  // loses records and never waits
            log.send(record("x"));
        int lost = 2000;
        while (journal.take() == sent("x"))
            --lost;
        log.send(record(message));
        EXPECT_EQ(journal.take(), note(std::to_string(lost)));
        EXPECT_EQ(journal.take(), sent(message));
        log.send(record(message));
        EXPECT_EQ(journal.take(), sent(message));
        ::unlink(path.c_str());
        log.send(record("nobody listens"));
    }
    EXPECT_EQ(log.descriptor(), descriptor);
}

TEST_F(JournalLogTest, WithoutAJournalTheTraditionalDaemonGetsTheLine) {
    struct HandTime final : LocalTime {
        std::optional<CivilTime> civilTime(WallTime) const noexcept override { return time; }
        std::optional<CivilTime> time = CivilTime{2024, 1, 5, 9, 5, 7};
    } handTime;
    LocalTime::install(&handTime);
    Service syslog(syslogPath);
    JournalLog unheard(std::string(200, 'j').c_str(), syslogPath.c_str());  // too long for a socket
    const std::string tag = "tag[" + std::to_string(::getpid()) + "]: ";
    unheard.send(record("hello"));
    EXPECT_EQ(syslog.take(), "<11>Jan  5 09:05:07 " + tag + "hello");
    unheard.send(record(std::string(8191, 'y').append("\u00FC").append(1 << 20, 'y')));
    EXPECT_EQ(syslog.take(), "<11>Jan  5 09:05:07 " + tag + std::string(8191, 'y'));
    handTime.time.reset();
    unheard.send(record("hello"));
    EXPECT_EQ(syslog.take(), "<11>" + tag + "hello");
    LocalTime::install(nullptr);
}

// The host closes our descriptor, and something of its own gets the number.
TEST_F(JournalLogTest, ANumberThatTheHostTookOverIsLeftAloneAndNeverGetsARecord) {
    Service journal(path);
    std::array<std::array<int, 2>, 5> connections{};
    ::pipe2(connections[0].data(), O_NONBLOCK);
    std::size_t next = 0;
    for (const int type : {int{SOCK_STREAM}, int{SOCK_DGRAM}, int{SOCK_SEQPACKET}})
        ::socketpair(AF_UNIX, type | SOCK_NONBLOCK, 0, connections[++next].data());
    // Another family: a socket that is connected to itself.
    const int internet = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof local;
    auto* const name = reinterpret_cast<sockaddr*>(&local);
    ASSERT_EQ(::bind(internet, name, size), 0);
    ::getsockname(internet, name, &size);
    ASSERT_EQ(::connect(internet, name, size), 0);
    connections[4] = {internet, ::dup(internet)};

    for (const auto& [reading, writing] : connections) {
        log.send(record("before"));
        EXPECT_EQ(journal.take(), sent("before"));
        const int number = log.descriptor();
        ASSERT_EQ(::dup2(writing, number), number);
        log.send(record("after"));
        EXPECT_EQ(journal.take(), sent("after")) << writing;
        char byte = 0;
        EXPECT_EQ(::read(reading, &byte, 1), -1) << writing;
        EXPECT_EQ(::write(number, "x", 1), 1) << "the host's descriptor was closed";
        for (const int used : {number, reading, writing})
            ::close(used);
    }
}

}  // namespace
}  // namespace veltra
