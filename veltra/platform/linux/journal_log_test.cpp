#include "veltra/platform/linux/journal_log.h"

#include "veltra/platform/local_time.h"
#include "veltra/platform/process.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

using namespace std::string_literals;

class Folder {
public:
    Folder() : m_path(::testing::TempDir() + "veltra-journal-XXXXXX") { ::mkdtemp(m_path.data()); }
    ~Folder() {
        ::unlink(path("journal").c_str());
        ::unlink(path("syslog").c_str());
        ::rmdir(m_path.c_str());
    }
    std::string path(const char* name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

class Service {
public:
    explicit Service(const std::string& path)
        : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        ::unlink(path.c_str());
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    ~Service() { ::close(m_socket); }

    // The next datagram, or what the file in it holds; "-" when there is none.
    std::string take(bool* wasSealedFile = nullptr) {
        std::string text(300'000, '\0');
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
        iovec piece{text.data(), text.size()};
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
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
            if (wasSealedFile != nullptr)
                *wasSealedFile = ::fcntl(file, F_GET_SEALS) ==
                                 (F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE);
            ::close(file);
        }
        return text;
    }

private:
    int m_socket;
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

TEST(JournalLog, SendsKeysInOrderUnderNamesThatTheJournalTakes) {
    const Folder folder;
    Service journal(folder.path("journal"));
    JournalLog log(folder.path("journal").c_str(), "");
    LogRecord full = record("two\nlines");
    full.fields[LogRecord::LocalTime].value = "2024-01-31 09:05:07.042";
    full.fields[LogRecord::Thread].value = "a0b";
    const std::string longTag(5000, 't');
    full.facility = longTag;
    log.send(full);
    EXPECT_EQ(journal.take(),
              "CFLOG_LOCAL_TIME=2024-01-31 09:05:07.042\nCFLOG_THREAD=a0b\nREADUID=1000\n"
              "LEVEL=3\nPRIORITY=3\nMESSAGE\n\x09\0\0\0\0\0\0\0two\nlines\nSYSLOG_IDENTIFIER="s +
                  longTag + "\n");
    log.send(record(""));
    EXPECT_EQ(journal.take(), sent(""));
    const std::string lines(128, '\n');
    log.send(record(lines));
    EXPECT_EQ(journal.take(), "READUID=1000\nLEVEL=3\nPRIORITY=3\nMESSAGE\n\x80\0\0\0\0\0\0\0"s +
                                  lines + "\nSYSLOG_IDENTIFIER=tag\n");
}

TEST(JournalLog, WhatIsTooLongForADatagramGoesAsASealedFile) {
    const Folder folder;
    Service journal(folder.path("journal"));
    JournalLog log(folder.path("journal").c_str(), "");
    const std::string message(1 << 20, 'x');
    bool wasSealedFile = false;
    log.send(record(message));
    EXPECT_EQ(journal.take(&wasSealedFile), sent(message));
    EXPECT_TRUE(wasSealedFile);

    const pid_t child = ::fork();
    if (child == 0) {  // not killed by the limit on file sizes
        const rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        log.send(record(message));
        ::_exit(0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(journal.take(), "-");
}

TEST(JournalLog, AFullQueueLosesRecordsAndNeverWaits) {
    const Folder folder;
    Service journal(folder.path("journal"));
    JournalLog log(folder.path("journal").c_str(), "");
    for (int count = 0; count < 2000; ++count)
        log.send(record("x"));
    while (journal.take() != "-")
        continue;
    log.send(record("after"));
    EXPECT_EQ(journal.take(), sent("after"));
}

TEST(JournalLog, ARestartedServiceAndAForkedChildUseTheSocketAsItIs) {
    const Folder folder;
    JournalLog log(folder.path("journal").c_str(), folder.path("syslog").c_str());
    log.send(record("nobody listens"));
    const int descriptor = log.descriptor();
    EXPECT_GE(descriptor, 0);
    for (const char* message : {"first life", "second life"}) {
        Service journal(folder.path("journal"));
        log.send(record(message));
        EXPECT_EQ(journal.take(), sent(message));
    }
    Service journal(folder.path("journal"));
    const pid_t child = ::fork();
    if (child == 0) {
        log.send(record("child"));
        ::_exit(0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(journal.take(), sent("child"));
    EXPECT_EQ(log.descriptor(), descriptor);
}

TEST(JournalLog, WithoutAJournalTheTraditionalDaemonGetsTheLine) {
    const Folder folder;
    Service syslog(folder.path("syslog"));
    JournalLog log(folder.path("journal").c_str(), folder.path("syslog").c_str());
    log.send(record("hello"));
    const std::string line = syslog.take();
    ASSERT_GT(line.size(), 20U) << line;
    EXPECT_EQ(line.substr(0, 4), "<11>");
    EXPECT_EQ(line.substr(19), " tag[" + std::to_string(::getpid()) + "]: hello");
    int day = 0, hour = 0, minute = 0, second = 0;
    char month[4]{};
    EXPECT_EQ(
        std::sscanf(line.c_str(), "<11>%3s %2d %2d:%2d:%2d", month, &day, &hour, &minute, &second),
        5)
        << line;

    log.send(record(std::string(1 << 20, 'y')));
    EXPECT_EQ(syslog.take().size(), line.size() - 5 + 8192);

    class NoTime final : public LocalTime {
        std::optional<CivilTime> civilTime(WallTime) const noexcept override { return {}; }
    } noTime;
    LocalTime::install(&noTime);
    log.send(record("hello"));
    LocalTime::install(nullptr);
    EXPECT_EQ(syslog.take(), "<11>tag[" + std::to_string(::getpid()) + "]: hello");
}

// The host closes our descriptor, and something of its own gets the number.
TEST(JournalLog, ANumberThatTheHostTookOverIsLeftAloneAndNeverGetsARecord) {
    const Folder folder;
    Service journal(folder.path("journal"));
    const auto pairOf = [](int type) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::socketpair(AF_UNIX, type, 0, ends.data()), 0);
        return ends;
    };
    std::vector<std::array<int, 2>> connections{pairOf(SOCK_STREAM), pairOf(SOCK_SEQPACKET),
                                                pairOf(SOCK_DGRAM)};
    std::array<int, 2> pipeEnds{};
    ASSERT_EQ(::pipe(pipeEnds.data()), 0);
    connections.push_back(pipeEnds);

    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof local;
    auto* name = reinterpret_cast<sockaddr*>(&local);
    ASSERT_EQ(::bind(listener, name, size) | ::listen(listener, 1), 0);
    ::getsockname(listener, name, &size);
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(::connect(client, name, size), 0);
    connections.push_back({::accept(listener, nullptr, nullptr), client});

    const int receiver = ::socket(AF_INET, SOCK_DGRAM, 0);
    local.sin_port = 0;
    ASSERT_EQ(::bind(receiver, name, size), 0);
    ::getsockname(receiver, name, &size);
    const int sender = ::socket(AF_INET, SOCK_DGRAM, 0);
    ASSERT_EQ(::connect(sender, name, size), 0);
    connections.push_back({receiver, sender});

    for (const auto& [reading, writing] : connections) {
        JournalLog log(folder.path("journal").c_str(), "");
        log.send(record("before"));
        EXPECT_EQ(journal.take(), sent("before"));
        const int number = log.descriptor();
        ASSERT_EQ(::dup2(writing, number), number);
        log.send(record("after"));
        EXPECT_EQ(journal.take(), sent("after")) << writing;
        char byte = 0;
        ::fcntl(reading, F_SETFL, O_NONBLOCK);
        EXPECT_EQ(::read(reading, &byte, 1), -1) << writing;
        EXPECT_EQ(::write(number, "x", 1), 1) << "the host's descriptor was closed";
        ::close(number);
        log.send(record("last"));
        EXPECT_EQ(journal.take(), sent("last"));
        ::close(reading);
        ::close(writing);
    }
    ::close(listener);
}

TEST(JournalLog, SeveralThreadsShareOneSocket) {
    const Folder folder;
    JournalLog log(folder.path("journal").c_str(), "");
    std::vector<std::thread> threads;
    threads.reserve(8);
    const int before = ::dup(0);
    ::close(before);
    for (int count = 0; count < 8; ++count)
        threads.emplace_back([&log] { log.send(record("x")); });
    for (std::thread& thread : threads)
        thread.join();
    ::close(log.descriptor());
    const int after = ::dup(0);
    EXPECT_EQ(after, before);
    ::close(after);
}

}  // namespace
}  // namespace veltra
