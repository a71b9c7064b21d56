#include "veltra/platform/standard_error.h"

#include "veltra/platform/linux/descriptor_standard_error.h"
#include "veltra/platform/process.h"
#include "veltra/platform/testing/environment.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>

namespace veltra {
namespace {

using Kind = StandardError::Kind;
constexpr StandardError::Pieces kPieces{"banner: ", "text", "\n"};
const std::string kLine = "banner: text\n";

// A kernel that takes `accepts` bytes, answers `answer` once, then takes everything. A negative
// answer is -1 with that errno.
struct ScriptedKernel {
    static inline std::string taken;
    static inline std::size_t accepts;
    static inline int answer;
    static inline bool hasAnswered;
    static inline int room, noWaitCalls, openDescriptors;

    static void start(std::size_t bytes, int result) {
        taken.clear();
        accepts = bytes, answer = result, hasAnswered = false;
        room = 1, noWaitCalls = 0, openDescriptors = 0;
    }
    static ssize_t take(int, const iovec* pieces, int count) {
        if (!hasAnswered && taken.size() == accepts) {
            hasAnswered = true;
            errno = -answer;
            return answer < 0 ? -1 : answer;
        }
        const std::size_t before = taken.size();
        for (int index = 0; index < count; ++index)
            taken.append(static_cast<const char*>(pieces[index].iov_base), pieces[index].iov_len);
        if (!hasAnswered) taken.resize(std::min(taken.size(), accepts));
        return static_cast<ssize_t>(taken.size() - before);
    }
    static ssize_t takeNoWait(int descriptor, const iovec* pieces, int count) {
        ++noWaitCalls;
        return take(descriptor, pieces, count);
    }
    static ssize_t takeMessage(int descriptor, const msghdr* message, int flags) {
        EXPECT_EQ(flags, MSG_DONTWAIT | MSG_NOSIGNAL);
        return take(descriptor, message->msg_iov, static_cast<int>(message->msg_iovlen));
    }
    static StandardErrorCalls calls(bool canReopen, bool isTerminal) {
        StandardErrorCalls made;
        made.writev = take;
        made.writevNoWait = takeNoWait;
        made.sendmsg = takeMessage;
        made.poll = [](pollfd*, nfds_t, int timeout) { return timeout == 0 ? room : -1; };
        made.isatty = isTerminal ? [](int) { return 1; } : [](int) { return 0; };
        made.reopen = canReopen ? [] { return ++openDescriptors, 99; } : [] { return -1; };
        made.close = [](int descriptor) { return descriptor == 99 ? --openDescriptors : -1; };
        return made;
    }
};

TEST(StandardError, EveryErrorAtEveryByteEndsTheLineOrIsOvercomeAndNothingIsRepeated) {
    const std::vector<int> refusals{-EOPNOTSUPP, -ENOSYS, -EINVAL, -ESPIPE};
    for (const Kind kind : {Kind::RegularFile, Kind::Pipe, Kind::Socket, Kind::Other})
        for (const bool canReopen : {true, false})
            for (const int answer : {0, -EINTR, -EAGAIN, -EPIPE, -ENOSPC, -EFBIG, -EBADF, -EIO,
                                     -ECONNRESET, -ENXIO, -EOPNOTSUPP, -ENOSYS, -EINVAL, -ESPIPE})
                for (std::size_t accepts = 0; accepts <= kLine.size(); ++accepts) {
                    DescriptorStandardError stream(ScriptedKernel::calls(canReopen, true));
                    ScriptedKernel::start(accepts, answer);
                    sigset_t before{};
                    sigset_t after{};
                    ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
                    stream.write({kind}, kPieces);
                    ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
                    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
                    const bool isRefusal =
                        std::find(refusals.begin(), refusals.end(), answer) != refusals.end();
                    const bool goesOn = answer == -EINTR ||
                                        (isRefusal && (kind == Kind::Pipe || kind == Kind::Other));
                    ASSERT_EQ(ScriptedKernel::taken, goesOn ? kLine : kLine.substr(0, accepts))
                        << static_cast<int>(kind) << " " << canReopen << " " << answer;
                    EXPECT_EQ(ScriptedKernel::openDescriptors, 0);

                    ScriptedKernel::start(kLine.size(), 0);
                    stream.write({kind}, kPieces);
                    ASSERT_EQ(ScriptedKernel::taken, kLine) << "the lock is free again";
                    if (isRefusal && accepts < kLine.size()) {
                        EXPECT_EQ(ScriptedKernel::noWaitCalls, 0) << "a refusal is remembered";
                    }
                }
}

TEST(StandardError, WithoutRoomOrEndlesslyInterruptedTheLineIsDropped) {
    StandardErrorCalls calls = ScriptedKernel::calls(false, false);
    for (const int room : {0, -1}) {
        DescriptorStandardError stream(calls);
        ScriptedKernel::start(3, -EOPNOTSUPP);
        ScriptedKernel::room = room;
        stream.write({Kind::Other}, kPieces);
        EXPECT_EQ(ScriptedKernel::taken, kLine.substr(0, 3));
    }
    calls.writev = [](int, const iovec*, int) -> ssize_t { return errno = EINTR, -1; };
    DescriptorStandardError stream(calls);
    stream.write({Kind::RegularFile}, kPieces);
    const std::string large(10'000, 'x');
    calls.writev = [](int, const iovec* pieces, int count) {
        EXPECT_TRUE(count == 1 && pieces->iov_len <= PIPE_BUF);
        return ScriptedKernel::take(2, pieces, count);
    };
    DescriptorStandardError little(calls);
    ScriptedKernel::start(0, -EOPNOTSUPP);
    little.write({Kind::Other}, {"", large, "\n"});
    EXPECT_EQ(ScriptedKernel::taken, large + "\n");
}

TEST(StandardError, InspectionTellsTheKindAndTrustsNoFailure) {
    StandardErrorCalls calls;
    const auto kindFor = [&calls] { return DescriptorStandardError(calls).inspect().kind; };
    calls.fstat = [](int, struct stat* status) { return status->st_mode = S_IFREG, 0; };
    EXPECT_EQ(kindFor(), Kind::RegularFile);
    calls.fpathconf = [](int, int) { return -1L; };
    EXPECT_EQ(kindFor(), Kind::Unusable);
    calls.fpathconf = [](int, int selector) { return selector == _PC_PIPE_BUF ? 4096L : -1L; };
    calls.fstat = [](int, struct stat* status) { return status->st_mode = S_IFREG, -1; };
    EXPECT_EQ(kindFor(), Kind::Unusable);
}

TEST(StandardError, AManagerReadsItWhenTheEnvironmentNamesItOrTheProcess) {
    const DescriptorStandardError stream;
    const std::string own = std::to_string(::getpid());
    const std::string large = "18446744073709551615";
    struct Row {
        const char* journal;
        const char* starter;
        bool managed;
    };
    const std::string spaced = own + " ";
    for (const Row& row :
         {Row{nullptr, nullptr, false}, Row{"5:77", nullptr, true}, Row{"5:78", nullptr, false},
          Row{"6:77", nullptr, false}, Row{"5:77 ", nullptr, false}, Row{"5", nullptr, false},
          Row{"5:", nullptr, false}, Row{":77", nullptr, false}, Row{"", "", false},
          Row{" 5:77", nullptr, false}, Row{nullptr, own.c_str(), true},
          Row{"5:78", own.c_str(), true}, Row{nullptr, "1", false},
          Row{nullptr, spaced.c_str(), false}, Row{"5:77", "1", true},
          Row{"5:18446744073709551693", nullptr, false}}) {
        setEnvironment("JOURNAL_STREAM", row.journal);
        setEnvironment("SYSTEMD_EXEC_PID", row.starter);
        EXPECT_EQ(stream.isManaged({Kind::Pipe, 5, 77}), row.managed)
            << (row.journal ? row.journal : "-") << " " << (row.starter ? row.starter : "-");
    }
    setEnvironment("JOURNAL_STREAM", ("5:" + large).c_str());
    EXPECT_TRUE(stream.isManaged({Kind::Socket, 5, UINT64_MAX}));
    setEnvironment("JOURNAL_STREAM", nullptr);
    setEnvironment("SYSTEMD_EXEC_PID", nullptr);
}

// Runs `body` in a child whose standard error is `descriptor`; a child that hangs is ended by its
// alarm. Answers the child's status: 0 when `body` answered true.
int inChild(int descriptor, const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(20);
        if (descriptor >= 0)
            ::dup2(descriptor, 2);
        else
            ::close(2);
        ::_exit(body() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

bool writeLine(StandardError& stream, Kind expected,
               const StandardError::Pieces& pieces = kPieces) {
    const StandardError::Status status = stream.inspect();
    stream.write(status, pieces);
    sigset_t waiting;
    ::sigpending(&waiting);
    return status.kind == expected && !::sigismember(&waiting, SIGPIPE) &&
           !::sigismember(&waiting, SIGXFSZ);
}

// What stands to be read, without waiting.
std::string drain(int descriptor) {
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    std::string text;
    char buffer[65536];
    for (ssize_t size = 0; (size = ::read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(size));
    return text;
}

// The ways on which a pipe or terminal can be written, best first.
std::vector<StandardErrorCalls> allWays() {
    StandardErrorCalls reopened;
    reopened.writevNoWait = [](int, const iovec*, int) -> ssize_t {
        return errno = EOPNOTSUPP, -1;
    };
    StandardErrorCalls asked = reopened;
    asked.reopen = [] { return -1; };
    return {StandardErrorCalls{}, reopened, asked};
}

TEST(StandardError, PipesTakeTheLineOrLoseItWithoutWaitingOnEveryWay) {
    for (const StandardErrorCalls& way : allWays()) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        DescriptorStandardError stream(way);
        EXPECT_EQ(inChild(ends[1], [&] { return writeLine(stream, Kind::Pipe); }), 0);
        EXPECT_EQ(drain(ends[0]), kLine);

        const std::string large(200'000, 'x');
        EXPECT_EQ(inChild(ends[1],
                          [&] {
                              return writeLine(stream, Kind::Pipe, {"", large, "\n"}) &&
                                     writeLine(stream, Kind::Pipe);
                          }),
                  0);
        EXPECT_EQ(::fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0) << "the shared mode was changed";
        const std::string text = drain(ends[0]);
        EXPECT_GT(text.size(), 4096U);
        EXPECT_EQ(text, std::string(text.size(), 'x'));

        ::close(ends[0]);
        EXPECT_EQ(inChild(ends[1], [&] { return writeLine(stream, Kind::Pipe); }), 0);
        ::close(ends[1]);
    }
}

TEST(StandardError, ASignalThatWasWaitingBeforeStaysWaiting) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ::close(ends[0]);
    for (const bool isWaiting : {false, true}) {
        EXPECT_EQ(inChild(ends[1],
                          [&] {
                              sigset_t pipeSignal;
                              ::sigemptyset(&pipeSignal);
                              ::sigaddset(&pipeSignal, SIGPIPE);
                              ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
                              if (isWaiting) ::raise(SIGPIPE);
                              DescriptorStandardError stream;
                              return writeLine(stream, Kind::Pipe) != isWaiting;
                          }),
                  0);
    }
    ::close(ends[1]);
}

TEST(StandardError, ClosedFullAndLimitedDescriptorsEndTheLineNotTheProcess) {
    DescriptorStandardError stream;
    EXPECT_EQ(inChild(-1, [&] { return writeLine(stream, Kind::Unusable); }), 0);
    const int full = ::open("/dev/full", O_WRONLY);
    EXPECT_EQ(inChild(full, [&] { return writeLine(stream, Kind::Other); }), 0);
    ::close(full);
    const int none = ::open("/dev/null", O_WRONLY);
    EXPECT_EQ(inChild(none, [&] { return writeLine(stream, Kind::Other); }), 0);
    ::close(none);

    std::string path = ::testing::TempDir() + "veltra-stderr-XXXXXX";
    const int file = ::mkstemp(path.data());
    EXPECT_EQ(inChild(file, [&] { return writeLine(stream, Kind::RegularFile); }), 0);
    EXPECT_EQ(inChild(file,
                      [&] {
                          const rlimit limit{kLine.size() + 5, kLine.size() + 5};
                          ::setrlimit(RLIMIT_FSIZE, &limit);
                          return writeLine(stream, Kind::RegularFile) &&
                                 writeLine(stream, Kind::RegularFile);
                      }),
              0);
    ::lseek(file, 0, SEEK_SET);
    EXPECT_EQ(drain(file), kLine + kLine.substr(0, 5));
    ::close(file);
    ::unlink(path.c_str());
}

TEST(StandardError, SocketsTakeTheLineOrLoseIt) {
    DescriptorStandardError stream;
    for (const int type : {SOCK_STREAM, SOCK_DGRAM, SOCK_SEQPACKET}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::socketpair(AF_UNIX, type, 0, ends.data()), 0);
        EXPECT_EQ(inChild(ends[1], [&] { return writeLine(stream, Kind::Socket); }), 0);
        EXPECT_EQ(drain(ends[0]), kLine);
        EXPECT_EQ(inChild(ends[1],
                          [&] {
                              for (int count = 0; count < 5000; ++count)
                                  writeLine(stream, Kind::Socket);
                              return true;
                          }),
                  0);
        ::close(ends[0]);
        EXPECT_EQ(inChild(ends[1], [&] { return writeLine(stream, Kind::Socket); }), 0);
        ::close(ends[1]);
    }
}

TEST(StandardError, ATerminalTakesTheLineAndAStoppedOneIsNotWaitedFor) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    std::array<char, 64> name{};
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::ptsname_r(master, name.data(), name.size()) != 0)
        GTEST_SKIP() << "no pseudo-terminals here";
    const int terminal = ::open(name.data(), O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    for (const StandardErrorCalls& way : allWays()) {
        DescriptorStandardError stream(way);
        EXPECT_EQ(inChild(terminal, [&] { return writeLine(stream, Kind::Other); }), 0);
        EXPECT_EQ(drain(master), "banner: text\r\n");
        ::tcflow(terminal, TCOOFF);  // NOLINT(concurrency-mt-unsafe): one thread
        EXPECT_EQ(inChild(terminal, [&] { return writeLine(stream, Kind::Other); }), 0);
        ::tcflow(terminal, TCOON);  // NOLINT(concurrency-mt-unsafe): one thread
        drain(master);
    }
    EXPECT_EQ(::fcntl(terminal, F_GETFL) & O_NONBLOCK, 0);
    ::close(terminal);
    ::close(master);
}

std::atomic<int> arrived{0};
std::array<int, 2> gate{};

TEST(StandardError, AChildForkedInTheMiddleOfAnotherThreadsLineCanWrite) {
    ASSERT_EQ(::pipe(gate.data()), 0);
    StandardErrorCalls calls;
    calls.writev = [](int, const iovec*, int) -> ssize_t {
        arrived = 1;
        char byte = 0;
        return ::read(gate[0], &byte, 1) == 1 ? 0 : -1;
    };
    DescriptorStandardError held(calls);
    std::thread holder([&] { held.write({Kind::RegularFile}, kPieces); });
    while (arrived == 0)
        std::this_thread::yield();
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    DescriptorStandardError stream;
    EXPECT_EQ(inChild(ends[1], [&] { return writeLine(stream, Kind::Pipe); }), 0);
    EXPECT_EQ(drain(ends[0]), kLine);
    ASSERT_EQ(::write(gate[1], "x", 1), 1);
    holder.join();
    for (const int descriptor : {gate[0], gate[1], ends[0], ends[1]})
        ::close(descriptor);
}

TEST(StandardError, ASignalHandlerMayWriteALine) {
    static std::string order;
    static DescriptorStandardError* stream;
    StandardErrorCalls calls;
    calls.writev = [](int, const iovec* pieces, int) -> ssize_t {
        const std::string_view text(static_cast<const char*>(pieces->iov_base), pieces->iov_len);
        if (text == "first") ::raise(SIGUSR1);
        order += text;
        return static_cast<ssize_t>(text.size());
    };
    DescriptorStandardError made(calls);
    stream = &made;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { stream->write({Kind::RegularFile}, {"second", "", ""}); };
    ::sigaction(SIGUSR1, &action, &before);
    made.write({Kind::RegularFile}, {"first", "", ""});
    ::sigaction(SIGUSR1, &before, nullptr);
    stream = nullptr;
    EXPECT_EQ(order, "firstsecond");
}

TEST(StandardError, LinesOfSeveralThreadsAreNeverMixed) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    constexpr int kThreads = 8;
    constexpr int kLines = 200;
    std::string text;
    std::thread reader([&] {
        char buffer[4096];
        for (ssize_t size = 0; (size = ::read(ends[0], buffer, sizeof buffer)) > 0;)
            text.append(buffer, static_cast<std::size_t>(size));
    });
    // One byte a call, so that only the lock keeps a line together.
    static int output;
    output = ends[1];
    StandardErrorCalls calls;
    calls.writev = [](int, const iovec* pieces, int) {
        return ::write(output, pieces->iov_base, 1);
    };
    DescriptorStandardError stream(calls);
    std::vector<std::thread> writers;
    writers.reserve(kThreads);
    for (int number = 0; number < kThreads; ++number)
        writers.emplace_back([&stream, number] {
            const std::string body(20, static_cast<char>('a' + number));
            for (int line = 0; line < kLines; ++line)
                stream.write({Kind::RegularFile}, {"<", body, ">\n"});
        });
    for (std::thread& writer : writers)
        writer.join();
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    ASSERT_EQ(text.size(), 23U * kThreads * kLines);
    for (std::size_t begin = 0; begin < text.size(); begin += 23)
        ASSERT_EQ(text.substr(begin, 23), "<" + std::string(20, text[begin + 1]) + ">\n");
}

}  // namespace
}  // namespace veltra
