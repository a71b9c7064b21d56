// SPDX-License-Identifier: MIT
#include "veltra/platform/standard_error.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/descriptor_standard_error.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/environment.h"

#include <csignal>

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <termios.h>

namespace veltra {
namespace {

using namespace std::string_literals;
using Kind = StandardError::Kind;
using Ends = std::array<int, 2>;
constexpr StandardError::Pieces kPieces{"banner: ", "text", "\n"};
const std::string kLine = "banner: text\n";
const std::string kTold = "veltra: lines cut or lost here: ";

// A kernel that takes `accepts` bytes, answers `answer` once, then takes everything. A negative
// answer is -1 with that errno.
struct Script {
    std::size_t accepts = 0;
    int answer = 0;
    int room = 1;
    std::string taken = {};
    bool hasAnswered = false;
    int noWaitCalls = 0, openDescriptors = 0;
    void (*inTheMiddle)() = nullptr;  // of the first call
} kernel;

ssize_t take(int, const iovec* pieces, int count) {
    if (kernel.inTheMiddle != nullptr) std::exchange(kernel.inTheMiddle, nullptr)();
    if (!kernel.hasAnswered && kernel.taken.size() == kernel.accepts) {
        kernel.hasAnswered = true;
        errno = -kernel.answer;
        return kernel.answer < 0 ? -1 : kernel.answer;
    }
    const std::size_t before = kernel.taken.size();
    for (const iovec& piece : std::span(pieces, static_cast<std::size_t>(count)))
        kernel.taken.append(static_cast<const char*>(piece.iov_base), piece.iov_len);
    if (!kernel.hasAnswered) kernel.taken.resize(std::min(kernel.taken.size(), kernel.accepts));
    return static_cast<ssize_t>(kernel.taken.size() - before);
}

StandardErrorCalls scripted(bool canReopen, bool isTerminal) {
    StandardErrorCalls calls;
    calls.writev = take;
    calls.writevNoWait = [](int descriptor, const iovec* pieces, int count) {
        ++kernel.noWaitCalls;
        return take(descriptor, pieces, count);
    };
    calls.sendmsg = [](int descriptor, const msghdr* message, int flags) {
        EXPECT_EQ(flags, MSG_DONTWAIT | MSG_NOSIGNAL);
        return take(descriptor, message->msg_iov, static_cast<int>(message->msg_iovlen));
    };
    calls.poll = [](pollfd*, nfds_t, int timeout) { return timeout == 0 ? kernel.room : -1; };
    calls.isatty = isTerminal ? [](int) { return 1; } : [](int) { return 0; };
    calls.reopen = canReopen ? [] { return ++kernel.openDescriptors, 99; } : [] { return -1; };
    calls.close = [](int descriptor) { return descriptor == 99 ? --kernel.openDescriptors : -1; };
    return calls;
}

TEST(StandardError, EveryErrorAtEveryByteEndsTheLineOrIsOvercomeAndNothingIsRepeated) {
    const std::set<int> refusals{-EOPNOTSUPP, -ENOSYS, -EINVAL, -ESPIPE};
    for (const Kind kind : {Kind::RegularFile, Kind::Pipe, Kind::Socket, Kind::Other})
        for (const bool canReopen : {true, false})
            for (const int answer : {0, -EINTR, -EAGAIN, -EPIPE, -ENOSPC, -EFBIG, -EBADF, -EIO,
                                     -ECONNRESET, -ENXIO, -EOPNOTSUPP, -ENOSYS, -EINVAL, -ESPIPE})
                for (std::size_t accepts = 0; accepts <= kLine.size(); ++accepts) {
                    DescriptorStandardError stream(scripted(canReopen, true));
                    kernel = {accepts, answer};
                    sigset_t before{}, after{};
                    ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
                    stream.write({kind}, kPieces);
                    ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
                    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
                    const bool isRefusal = refusals.count(answer) != 0;
                    const bool goesOn = answer == -EINTR ||
                                        (isRefusal && (kind == Kind::Pipe || kind == Kind::Other));
                    ASSERT_EQ(kernel.taken, goesOn ? kLine : kLine.substr(0, accepts))
                        << static_cast<int>(kind) << " " << canReopen << " " << answer;
                    EXPECT_EQ(kernel.openDescriptors, 0);

                    // The lock is free again; what is missing is told once, on a line of its own.
                    const std::size_t written = kernel.taken.size();
                    const std::string told = kTold + "1\n";
                    kernel = {SIZE_MAX, 0};
                    stream.write({kind}, kPieces);
                    stream.write({kind}, kPieces);
                    ASSERT_EQ(kernel.taken, written == kLine.size() ? kLine + kLine
                                            : written == 0          ? told + kLine + kLine
                                                                    : "\n" + told + kLine + kLine);
                    if (isRefusal && accepts < kLine.size()) {
                        EXPECT_EQ(kernel.noWaitCalls, 0) << "a refusal is remembered";
                    }
                }
}

TEST(StandardError, WhatTheSystemTellsNothingAboutGetsTheLineUnlessItIsClosed) {
    for (const bool isClosed : {false, true}) {
        StandardErrorCalls calls = scripted(true, false);
        calls.fstat = [](int, struct stat*) { return errno = ESTALE, -1; };
        if (isClosed) calls.lseek = [](int, off_t, int) { return errno = EBADF, off_t{-1}; };
        DescriptorStandardError stream(calls);
        kernel = {0, -EIO};
        stream.write({}, kPieces);
        kernel = {SIZE_MAX, 0};
        stream.write({}, kPieces);
        EXPECT_EQ(kernel.taken, isClosed ? "" : kTold + "1\n" + kLine);
    }
}

TEST(StandardError, WhatWasLostIsCountedUntilItIsToldAndOnlyInItsOwnProcessAndFile) {
    const StandardError::Status file{Kind::RegularFile, 1, 7}, other{Kind::RegularFile, 1, 8};
    DescriptorStandardError stream(scripted(true, true));
    const auto write = [&stream](const StandardError::Status& status, std::size_t accepts) {
        kernel = {accepts, -ENOSPC};
        stream.write(status, kPieces);
        return kernel.taken;
    };
    EXPECT_EQ(write(file, 6), "banner");
    EXPECT_EQ(write(file, 1), "\n");
    EXPECT_EQ(write(file, 0), "");
    EXPECT_EQ(write(file, kTold.size()), kTold) << "the count itself was lost";
    EXPECT_TRUE(testing::holdsInChild([&] { return write(file, 99) == "\n" + kLine; }));
    EXPECT_EQ(write(other, 99), kTold + "4\n" + kLine) << "the open line is in another file";
    EXPECT_EQ(write(other, 99), kLine);
}

TEST(StandardError, AManagerReadsItWhenTheEnvironmentNamesItOrTheProcess) {
    const auto isManaged = [](const char* journal, const char* starter) {
        setEnvironment("JOURNAL_STREAM", journal);
        setEnvironment("SYSTEMD_EXEC_PID", starter);
        return DescriptorStandardError().isManaged({Kind::Pipe, 5, UINT64_MAX});
    };
    const std::string stream = "5:18446744073709551615", own = std::to_string(::getpid());
    EXPECT_TRUE(isManaged(stream.c_str(), "1") && isManaged("5:78", own.c_str()));
    EXPECT_FALSE(isManaged("", "1") || isManaged("", (own + " ").c_str()));
    for (const std::string& other : {""s, "5:77"s, "6" + stream.substr(1), stream + " ",
                                     " " + stream, stream + "0", "5"s, "5:"s, stream.substr(1)})
        EXPECT_FALSE(isManaged(other.c_str(), "")) << other;
    EXPECT_FALSE(isManaged(nullptr, nullptr));
}

// Whether a child whose standard error is `descriptor` writes `count` lines and gets no signal, but
// keeps a SIGPIPE that was waiting before.
bool childWrites(int descriptor, Kind expected, DescriptorStandardError& stream,
                 const StandardError::Pieces& pieces = kPieces, int count = 1,
                 bool isSignalWaiting = false) {
    return testing::holdsInChild([&] {
        descriptor >= 0 ? ::dup2(descriptor, 2) : ::close(2);
        sigset_t signals{};
        ::sigaddset(&signals, SIGPIPE);
        if (isSignalWaiting) ::pthread_sigmask(SIG_BLOCK, &signals, nullptr), ::raise(SIGPIPE);
        const StandardError::Status status = stream.inspect();
        while (count-- > 0)
            stream.write(status, pieces);
        ::sigpending(&signals);
        return status.kind == expected &&
               ::sigismember(&signals, SIGPIPE) == int{isSignalWaiting} &&
               !::sigismember(&signals, SIGXFSZ);
    });
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

constexpr int kPipe = 0, kTerminal = -1;  // among the types of sockets

Ends openChannel(int type) {
    Ends ends{};
    if (type != kTerminal) {
        EXPECT_EQ(type ? ::socketpair(AF_UNIX, type, 0, ends.data()) : ::pipe(ends.data()), 0);
        return ends;
    }
    ends[0] = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_EQ(::grantpt(ends[0]) | ::unlockpt(ends[0]), 0);
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    ends[1] = ::open(::ptsname(ends[0]), O_RDWR | O_NOCTTY);
    return ends;
}

TEST(StandardError, EveryChannelTakesTheLineOrLosesItWithoutWaitingOnEveryWay) {
    const std::string large(300'000, 'x');
    for (const int type : std::initializer_list<int>{kPipe, kTerminal, SOCK_STREAM, SOCK_DGRAM})
        for (const StandardErrorCalls& way : allWays()) {
            const Ends ends = openChannel(type);
            const Kind kind = type > 0 ? Kind::Socket : type == kPipe ? Kind::Pipe : Kind::Other;
            DescriptorStandardError stream(way);
            EXPECT_TRUE(childWrites(ends[1], kind, stream));
            EXPECT_EQ(drain(ends[0]), type == kTerminal ? "banner: text\r\n" : kLine);

            // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
            if (type == kTerminal) ::tcflow(ends[1], TCOOFF);
            EXPECT_TRUE(childWrites(ends[1], kind, stream, {"", large, "\n"}, 2));
            EXPECT_TRUE(childWrites(ends[1], kind, stream, kPieces, 6000)) << "until it is full";
            EXPECT_EQ(::fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0) << "the shared mode was changed";
            EXPECT_EQ(drain(ends[0]).substr(0, 1), type == kTerminal    ? ""
                                                   : type == SOCK_DGRAM ? "b"
                                                                        : "x");
            ::close(ends[0]);
            EXPECT_TRUE(childWrites(ends[1], kind, stream));
            EXPECT_TRUE(childWrites(ends[1], kind, stream, kPieces, 1, true));
            ::close(ends[1]);
        }
}

TEST(StandardError, ClosedAndFullDescriptorsEndTheLineNotTheProcess) {
    DescriptorStandardError stream;
    EXPECT_TRUE(childWrites(-1, Kind::Unusable, stream));
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_TRUE(childWrites(full, Kind::Other, stream));
    ::close(full);
}

TEST(StandardError, AFullFileEndsTheLineNotTheProcessAndMissesTheEndAlone) {
    const int file = ::memfd_create("file", MFD_CLOEXEC);
    const int other = ::memfd_create("other", MFD_CLOEXEC);
    for (const int each : {file, other})
        ASSERT_EQ(::write(each, ">", 1), 1) << "beyond the start nobody is asked which file it is";
    EXPECT_TRUE(testing::holdsInChild([&] {
        DescriptorStandardError stream;
        const auto write = [&](int descriptor, rlim_t limit) {
            const rlimit limits{limit, RLIM_INFINITY};
            ::setrlimit(RLIMIT_FSIZE, &limits);
            ::dup2(descriptor, 2);
            stream.write(stream.inspect(), kPieces);
        };
        write(file, 5);
        write(file, RLIM_INFINITY);
        write(file, 60);
        write(other, RLIM_INFINITY);
        sigset_t waiting{};
        ::sigpending(&waiting);
        return !::sigismember(&waiting, SIGXFSZ);
    }));
    const std::string told = kTold + "1\n" + kLine;
    for (const int each : {file, other})
        ::lseek(each, 0, SEEK_SET);
    EXPECT_EQ(drain(file), (">bann\n" + told + kLine).substr(0, 60));
    EXPECT_EQ(drain(other), ">" + told);
    ::close(file);
    ::close(other);
}

TEST(StandardError, AChildForkedInTheMiddleOfAnotherThreadsLineCanWrite) {
    static std::atomic<bool> hasArrived, mayGoOn;
    hasArrived = mayGoOn = false;
    kernel = {};
    kernel.inTheMiddle = [] {
        hasArrived = true;
        while (!mayGoOn)
            std::this_thread::yield();
    };
    std::thread holder(
        [] { DescriptorStandardError(scripted(true, true)).write({Kind::RegularFile}, kPieces); });
    while (!hasArrived)
        std::this_thread::yield();
    EXPECT_TRUE(testing::holdsInChild([] {
        kernel = {kLine.size(), 0};
        DescriptorStandardError(scripted(true, true)).write({Kind::Pipe}, kPieces);
        return kernel.taken == kLine;
    }));
    mayGoOn = true;
    holder.join();
}

TEST(StandardError, ASignalHandlerMayWriteALine) {
    static DescriptorStandardError stream(scripted(true, true));
    kernel = {SIZE_MAX, 0};
    kernel.inTheMiddle = [] { ::raise(SIGUSR1); };
    const auto before = std::signal(SIGUSR1, [](int) {
        stream.write({Kind::RegularFile}, {"second", "", ""});
    });
    stream.write({Kind::RegularFile}, {"first", "", ""});
    std::signal(SIGUSR1, before);
    EXPECT_EQ(kernel.taken, "firstsecond");
}

TEST(StandardError, LinesOfSeveralThreadsAreNeverMixed) {
    // One byte a call, so that only the lock keeps a line together.
    StandardErrorCalls calls;
    calls.writev = [](int descriptor, const iovec* pieces, int) {
        std::this_thread::yield();
        const iovec one{pieces->iov_base, 1};
        return take(descriptor, &one, 1);
    };
    kernel = {SIZE_MAX, 0};
    DescriptorStandardError stream(calls);
    std::vector<std::jthread> writers;
    for (char letter = 'a'; letter < 'i'; ++letter)
        writers.emplace_back([&stream, body = std::string(20, letter)] {
            for (int line = 0; line < 200; ++line)
                stream.write({Kind::RegularFile}, {"<", body, ">\n"});
        });
    writers.clear();
    ASSERT_EQ(kernel.taken.size(), 8U * 200U * 23U);
    for (std::size_t begin = 0; begin < kernel.taken.size(); begin += 23)
        ASSERT_EQ(kernel.taken.substr(begin, 23),
                  "<" + std::string(20, kernel.taken[begin + 1]) + ">\n");
}

}  // namespace
}  // namespace veltra
