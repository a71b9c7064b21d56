#include "veltra/diagnostics/log.h"

#include "veltra/diagnostics/detail/log_text.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/detail/string_object_text.h"
#include "veltra/platform/testing/environment.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

using namespace std::string_literals;
constexpr auto kUnset = std::nullopt;
const char* const kNoFormat = nullptr;

// A string object for the length of a test.
class Text {
public:
    explicit Text(std::string_view utf8) : m_string(createString(utf8)) {}
    explicit Text(std::u16string_view utf16) : m_string(createString(utf16)) {}
    ~Text() { releaseString(m_string); }
    operator const VLString*() const { return m_string; }

private:
    const VLString* m_string;
};

TEST(Log, TheLineAndTheRecordHoldTheDocumentedTexts) {
    LogWorld world;
    QKLogCString(3, true, "X", "hel%s", "lo");
    EXPECT_EQ(world.line(), "2024-01-31 09:05:07.042 prog[123:a0b] X: hello\n");
    ASSERT_EQ(world.records.size(), 1U);
    EXPECT_EQ(world.records[0].facility, "X");
    const decltype(world.records[0].fields) fields{{"CFLog Local Time", "2024-01-31 09:05:07.042"},
                                                   {"CFLog Thread", "a0b"},
                                                   {"ReadUID", "1000"},
                                                   {"Level", "3"},
                                                   {"Message", "hello"}};
    EXPECT_EQ(world.records[0].fields, fields);

    world.forget();
    world.userId = 4294967294U;
    QKLogCString(7, false, nullptr, "plain");
    EXPECT_EQ(world.line(), "plain\n");
    EXPECT_EQ(world.records[0].facility, "QKLogCString");
    const decltype(world.records[0].fields) bare{{"CFLog Local Time", kUnset},
                                                 {"CFLog Thread", kUnset},
                                                 {"ReadUID", "-2"},
                                                 {"Level", "7"},
                                                 {"Message", "plain"}};
    EXPECT_EQ(world.records[0].fields, bare);
}

TEST(Log, EveryFormOfBannerTagAndMessage) {
    const std::string banner = "2024-01-31 09:05:07.042 prog[123:a0b] ";
    const struct {
        Banner isWanted;
        const char* tag;
        std::optional<std::string> message;
        std::string line;
    } rows[] = {
        {Banner::Yes, "X", "hello", banner + "X: hello\n"},
        {Banner::Yes, nullptr, "hello", banner + "hello\n"},
        {Banner::Yes, "X", kUnset, banner + "X\n"},
        {Banner::No, "X\n", kUnset, "X\n"},
        {Banner::No, "X", "hello", "hello\n"},
        {Banner::Yes, "X", "", banner + "X\n"},
        {Banner::Yes, nullptr, "", banner + "\n"},
        {Banner::No, "X", "", "\n"},
        {Banner::No, "", kUnset, "\n"},
        {Banner::Yes, "", "hello", banner + ": hello\n"},
        {Banner::Yes, "X", "open\b", banner + "X: open\b"},
        {Banner::Yes, "X", "line\n", banner + "X: line\n"},
        {Banner::No, nullptr, "line\n\r", "line\n\r\n"},
    };
    for (const auto& row : rows) {
        LogWorld world;
        logMessage(5, row.isWanted, row.tag, row.message);
        EXPECT_EQ(world.line(), row.line);
        EXPECT_EQ(world.message(), row.message ? *row.message : row.tag);
    }
}

TEST(Log, NothingIsLoggedAboveTheHighestLevelOrWithoutTagAndFormat) {
    LogWorld world;
    for (const std::uint32_t level : {8U, 9U, 0x80000000U, 0xFFFFFFFFU})
        QKLogCString(level, true, "X", "hello");
    QKLogCString(3, true, nullptr, kNoFormat);
    QKLog(3, true, nullptr, nullptr);
    QKLog(8, true, "X", Text("hello"));
    EXPECT_TRUE(world.records.empty() && world.lines.empty());
    for (std::uint32_t level = 0; level <= 7; ++level) {
        QKLogCString(level, true, "X", kNoFormat);
        EXPECT_EQ(world.records.back().fields[LogRecord::Level].second, std::to_string(level));
    }
    EXPECT_EQ(world.lines.size(), 8U);
}

TEST(Log, WithoutLocalTimeThereIsNoBanner) {
    LogWorld world;
    world.localTime.reset();
    world.userId = 0;
    QKLogCString(3, true, "X", "hello");
    EXPECT_EQ(world.line(), "hello\n");
    EXPECT_EQ(world.records[0].fields[LogRecord::LocalTime].second, kUnset);
    EXPECT_EQ(world.records[0].fields[LogRecord::Thread].second, kUnset);
    EXPECT_EQ(world.records[0].fields[LogRecord::ReadUserId].second, "0");
}

TEST(Log, WhoGetsALineOnStandardError) {
    setEnvironment("CFLOG_FORCE_STDERR", nullptr);
    using enum StandardError::Kind;
    for (int bits = 0; bits < 8; ++bits) {
        for (const auto kind : {Unusable, RegularFile, Pipe, Socket, Other}) {
            const bool isForced = (bits & 4) != 0;
            if (isForced) setEnvironment("CFLOG_FORCE_STDERR", "");
            LogWorld world;
            world.hasRaisedRights = (bits & 2) != 0;
            world.managed = (bits & 1) != 0;
            world.kind = kind;
            QKLogCString(6, false, nullptr, "x");
            setEnvironment("CFLOG_FORCE_STDERR", nullptr);
            const bool expected = (isForced && !world.hasRaisedRights) || kind == RegularFile ||
                                  (kind != Unusable && !world.managed);
            EXPECT_EQ(world.lines.size(), expected ? 1U : 0U) << bits << static_cast<int>(kind);
            EXPECT_EQ(world.message(), "x");
        }
    }
}

TEST(Log, TheEnvironmentDecidesAboutBannersAtEveryCall) {
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", nullptr);
    EXPECT_TRUE(QKLogWithSyslogBanner());
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", "");
    EXPECT_FALSE(QKLogWithSyslogBanner());
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", nullptr);
}

TEST(Log, ObjectFormatsAreReadTwice) {
    const Text object("caf\xC3\xA9 50%%");
    const std::pair<const char*, const char*> rows[] = {{"100%%", "100%"},
                                                        {"100%%%%%%", "100%%"},
                                                        {"%%d and %%s", "%d and %s"},
                                                        {"%%%%%%%%", "%%"},
                                                        {"%@|%@", "caf\xC3\xA9 50%|(null)"}};
    LogWorld world;
    for (const auto& [format, expected] : rows) {
        QKLog(6, false, "X", Text(format), static_cast<const VLString*>(object), nullptr);
        EXPECT_EQ(world.message(), expected);
        world.forget();
    }
    QKLog(6, false, "X", nullptr);
    EXPECT_EQ(world.message(), "X");
    world.forget();
    QKLog(6, false, "X", Text(u"cut\0here"s));
    EXPECT_EQ(world.message(), "cut");
}

[[gnu::format(printf, 1, 2)]] void wrapper(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    QKLogCStringV(6, false, nullptr, format, arguments);
    va_end(arguments);
}

void objectWrapper(const VLString* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    QKLogV(6, false, nullptr, format, arguments);
    va_end(arguments);
}

TEST(Log, LongTextsWrappersAndTextsThatPrintfRefuses) {
    LogWorld world;
    for (const int length : {1022, 1023, 1024, 1025, 200'000}) {
        const std::string expected = std::string(static_cast<std::size_t>(length - 1), '0') + "7";
        wrapper("%0*d", length, 7);
        EXPECT_EQ(world.message(), expected);
        world.forget();
        objectWrapper(Text("%0*d"), length, 7);
        EXPECT_EQ(world.message(), expected);
        world.forget();
    }
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    QKLogCString(6, false, nullptr, "bad %ls", noCharacter);
    EXPECT_EQ(world.message(), "bad %ls");
    world.forget();
    QKLogCString(6, false, nullptr, "cut%chere", 0);
    EXPECT_EQ(world.line(), "cut\n");
}

TEST(Log, ErrnoIsKeptAndCanBeLogged) {
    LogWorld world;
    world.whenSending = [] { errno = EIO; };
    errno = ENOSPC;
    QKLogCString(6, true, "X", std::string("%d %m").c_str(), 1);
    EXPECT_EQ(errno, ENOSPC);
    QKLog(6, true, "X", Text("%d %m"), 1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(world.records[0].fields[LogRecord::Message].second, "1 No space left on device");
    EXPECT_EQ(world.records[1].fields[LogRecord::Message].second, "1 No space left on device");
}

TEST(Log, ACancelledThreadEndsItsLine) {
    LogWorld world;
    world.whenSending = ::pthread_testcancel;  // as every system call is one
    std::thread([] {
        ::pthread_cancel(::pthread_self());
        QKLogCString(6, false, nullptr, "hello");
        ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    }).join();
    EXPECT_EQ(world.line(), "hello\n");
}

TEST(Log, ATextIsCutWhenMemoryIsOut) {
#ifdef VELTRA_SANITIZED
    GTEST_SKIP() << "sanitizers need the address space that this test takes away";
#endif
    const pid_t child = ::fork();
    if (child == 0) {
        LogWorld world;
        const rlimit limit{64U << 20U, 64U << 20U};
        ::setrlimit(RLIMIT_AS, &limit);
        wrapper("%0*d", 100'000'000, 7);
        ::_exit(world.message() == std::string(1023, '0') ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace veltra
