// SPDX-License-Identifier: MIT
// The cost of one log line to its caller: a record to a datagram socket and a line to a pipe. Both
// are emptied between two lines, outside the measured time, so that every line is taken in full and
// no other thread's waking up is measured. Then a line to a file on a machine without a log
// service.
#include "benchmarks/ratios.h"
#include "veltra/diagnostics/log.h"
#include "veltra/platform/linux/journal_log.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr std::string_view kPath = "/tmp/veltra-bench-journal";
constexpr std::string_view kRecord =
    "CFLOG_LOCAL_TIME=2024-01-31 09:05:07.042\nCFLOG_THREAD=1a0b\nREADUID=1000\nLEVEL=6\n"
    "PRIORITY=6\nMESSAGE=voice 47110 stolen on channel Strings\nSYSLOG_IDENTIFIER=engine\n";
constexpr std::array<std::string_view, 3> kPieces{
    "2024-01-31 09:05:07.042 bench_diagnostics[12345:1a0b] engine: ",
    "voice 47110 stolen on channel Strings", "\n"};

class Receivers {
public:
    Receivers() {
        m_address.sun_family = AF_UNIX;
        m_path = std::string(kPath) + "-" + std::to_string(::getpid());
        m_path.copy(m_address.sun_path, sizeof m_address.sun_path - 1);
        m_service = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
        m_sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
        std::array<int, 2> ends{};
        if (::bind(m_service, name(), sizeof m_address) != 0 || ::pipe(ends.data()) != 0)
            std::abort();
        m_reader = ends[0];
        ::fcntl(m_reader, F_SETFL, O_NONBLOCK);
        ::dup2(ends[1], STDERR_FILENO);
    }
    ~Receivers() { ::unlink(m_path.c_str()); }

    const char* path() const { return m_path.c_str(); }
    sockaddr* name() { return reinterpret_cast<sockaddr*>(&m_address); }
    socklen_t nameSize() const { return sizeof m_address; }
    int sender() const { return m_sender; }

    // Whether as many bytes as make a line had arrived at standard error, and at the service if
    // something was sent there.
    bool haveLine(bool isSent) const {
        constexpr ssize_t kShortest = 60;
        std::array<char, 4096> buffer;
        const ssize_t record = ::recv(m_service, buffer.data(), buffer.size(), 0);
        const ssize_t line = ::read(m_reader, buffer.data(), buffer.size());
        return line >= kShortest && (record >= kShortest || !isSent);
    }

private:
    std::string m_path;
    sockaddr_un m_address{};
    int m_service = -1;
    int m_sender = -1;
    int m_reader = -1;
};

Receivers* receivers = nullptr;

template <typename LogLine>
void measure(benchmark::State& state, LogLine logLine, bool isSent = true) {
    receivers->haveLine(isSent);  // of before
    bool isComplete = true;
    for (auto _ : state) {
        const auto before = std::chrono::steady_clock::now();
        logLine();
        const auto after = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(after - before).count());
        isComplete = receivers->haveLine(isSent) && isComplete;
    }
    if (!isComplete) state.SkipWithError("a line was lost");
}

void sendRecord() {
    iovec piece{const_cast<char*>(kRecord.data()), kRecord.size()};
    msghdr message{};
    message.msg_name = receivers->name();
    message.msg_namelen = receivers->nameSize();
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    benchmark::DoNotOptimize(::sendmsg(receivers->sender(), &message, MSG_DONTWAIT | MSG_NOSIGNAL));
}

void writeLine() {
    std::array<iovec, 3> pieces{};
    for (std::size_t index = 0; index < pieces.size(); ++index)
        pieces[index] = {const_cast<char*>(kPieces[index].data()), kPieces[index].size()};
    if (::pwritev2(STDERR_FILENO, pieces.data(), 3, -1, RWF_NOWAIT) < 0)
        benchmark::DoNotOptimize(::writev(STDERR_FILENO, pieces.data(), 3));
}

void logLine(benchmark::State& state) {
    int number = 0;
    measure(state, [&] {
        veltra::QKLogCString(6, veltra::QKLogWithSyslogBanner(), "engine",
                             "voice %d stolen on channel %s", ++number, "Strings");
    });
}

// What the line's safety costs is part of it: who the descriptors are, no signals meanwhile.
void sameSystemCalls(benchmark::State& state) {
    sigset_t all;
    ::sigfillset(&all);
    measure(state, [&] {
        benchmark::DoNotOptimize(::geteuid());
        int type = 0;
        socklen_t size = sizeof type;
        ::getsockopt(receivers->sender(), SOL_SOCKET, SO_TYPE, &type, &size);
        sendRecord();
        struct stat status;
        ::fstat(STDERR_FILENO, &status);
        sigset_t before;
        ::pthread_sigmask(SIG_SETMASK, &all, &before);
        writeLine();
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    });
}

void sendAndWriteAlone(benchmark::State& state) {
    measure(state, [] {
        sendRecord();
        writeLine();
    });
}

void spdlogLine(benchmark::State& state) {
    const auto logger = std::make_shared<spdlog::logger>(
        "engine", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e bench_diagnostics[%P:%t] %n: %v");
    logger->flush_on(spdlog::level::info);
    int number = 0;
    measure(
        state, [&] { logger->info("voice {} stolen on channel {}", ++number, "Strings"); }, false);
}

// While one lives standard error is an empty file.
class FileAsStandardError {
public:
    FileAsStandardError() {
        std::FILE* file = std::tmpfile();
        if (file == nullptr || ::dup2(::fileno(file), STDERR_FILENO) < 0) std::abort();
        std::fclose(file);
    }
    FileAsStandardError(const FileAsStandardError&) = delete;
    FileAsStandardError& operator=(const FileAsStandardError&) = delete;
    ~FileAsStandardError() {
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
    }

private:
    const int m_before = ::dup(STDERR_FILENO);
};

void logLineToFile(benchmark::State& state) {
    const FileAsStandardError file;
    veltra::JournalLog nobody("", "");
    veltra::SystemLog* const before = veltra::SystemLog::install(&nobody);
    int number = 0;
    for (auto _ : state)
        veltra::QKLogCString(6, veltra::QKLogWithSyslogBanner(), "engine",
                             "voice %d stolen on channel %s", ++number, "Strings");
    veltra::SystemLog::install(before);
}

void spdlogLineToFile(benchmark::State& state) {
    const FileAsStandardError file;
    spdlog::logger logger("engine", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    logger.set_pattern("%Y-%m-%d %H:%M:%S.%e bench_diagnostics[%P:%t] %n: %v");
    logger.flush_on(spdlog::level::info);
    int number = 0;
    for (auto _ : state)
        logger.info("voice {} stolen on channel {}", ++number, "Strings");
}

BENCHMARK(logLineToFile);
BENCHMARK(spdlogLineToFile);
BENCHMARK(logLine)->UseManualTime();
BENCHMARK(sameSystemCalls)->UseManualTime();
BENCHMARK(sendAndWriteAlone)->UseManualTime();
BENCHMARK(spdlogLine)->UseManualTime();

constexpr Ratio kRatios[] = {
    {"log line / same calls, text ready", "logLine", "sameSystemCalls", 1.3},
    {"log line / send and write alone", "logLine", "sendAndWriteAlone", 0},
    {"log line / spdlog, line only", "logLine", "spdlogLine", 0},
    {"line to a file, no log service / spdlog", "logLineToFile", "spdlogLineToFile", 2},
};

}  // namespace

int main(int argc, char** argv) {
    Receivers made;
    receivers = &made;
    veltra::JournalLog journal(made.path(), "");
    veltra::SystemLog::install(&journal);
    const int status = runRatios(argc, argv, kRatios);
    veltra::SystemLog::install(nullptr);
    return status;
}
