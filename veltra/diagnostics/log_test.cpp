// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/log.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/diagnostics/text_buffer.h"
#include "veltra/platform/testing/cancelled_thread.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <clocale>
#include <cstdarg>

namespace veltra {
namespace {

using namespace std::string_literals;

using namespace std::string_view_literals;
constexpr auto kUnset = std::nullopt;
const char* const kNoFormat = nullptr;

// A string object of a literal.
struct Text {
    explicit Text(std::u16string_view text) : string(constantString(text)) {}
    operator const VLString*() const { return &string; }
    const VLString string;
};

// The facility and the fields of the one record.
std::string recordOf(const LogWorld& world) {
    if (world.records.size() != 1) return world.message();
    std::string text = world.records[0].facility;
    for (const auto& [key, value] : world.records[0].fields)
        text += "|" + key + (value ? "=" + *value : " unset");
    return text;
}

TEST(Log, TheRecordHoldsTheDocumentedTexts) {
    const std::string noBanner = "|CFLog Local Time unset|CFLog Thread unset|ReadUID=";
    LogWorld world;
    QKLogCString(3, true, "X", "hel%s", "lo");
    EXPECT_EQ(recordOf(world),
              "X|CFLog Local Time=2024-01-31 09:05:07.042"
              "|CFLog Thread=a0b|ReadUID=1000|Level=3|Message=hello");
    world.forget();
    world.userId = 4294967294U;
    QKLogCString(7, false, nullptr, "plain");
    EXPECT_EQ(recordOf(world), "QKLogCString" + noBanner + "-2|Level=7|Message=plain");
    world.forget();
    for (const auto& [year, text] : {std::pair(7, "0007"), {-7, "-007"}, {10000, "10000"}}) {
        world.localTime->year = year;
        QKLogCString(7, true, nullptr, "year");
        EXPECT_EQ(world.line(), std::string(text) + "-01-31 09:05:07.042 prog[123:a0b] year\n");
        world.forget();
    }
    world.userId = 0;
    world.localTime.reset();
    QKLogCString(3, true, "X", "hello");
    EXPECT_EQ(world.line(), "hello\n") << "no local time, no banner";
    EXPECT_EQ(recordOf(world), "X" + noBanner + "0|Level=3|Message=hello");
}

TEST(Log, EveryFormOfBannerTagAndMessage) {
    const std::string banner = "2024-01-31 09:05:07.042 prog[123:a0b] ";
    using enum Banner;
    using Row = std::tuple<Banner, const char*, std::optional<std::string>, std::string>;
    const Row rows[] = {{Yes, "X", "hello", "X: hello\n"},
                        {Yes, nullptr, "hello", "hello\n"},
                        {Yes, "X", kUnset, "X\n"},
                        {No, "X\n", kUnset, "X\n"},
                        {No, "X", "hello", "hello\n"},
                        {Yes, "X", "", "X\n"},
                        {Yes, nullptr, "", "\n"},
                        {No, "X", "", "\n"},
                        {No, "", kUnset, "\n"},
                        {Yes, "", "hello", ": hello\n"},
                        {Yes, "X", "open\b", "X: open\b"},
                        {Yes, "X", "line\n", "X: line\n"},
                        {No, nullptr, "line\n\r", "line\n\r\n"}};
    for (const auto& [isWanted, tag, message, rest] : rows) {
        LogWorld world;
        logMessage(5, isWanted, tag, message);
        EXPECT_EQ(world.line(), (isWanted == Yes ? banner : "") + rest);
        EXPECT_EQ(world.message(), message ? *message : tag);
    }
}

TEST(Log, NothingIsLoggedAboveTheHighestLevelOrWithoutTagAndFormat) {
    LogWorld world;
    for (const std::uint32_t level : {8U, 9U, 0x80000000U, 0xFFFFFFFFU})
        QKLogCString(level, true, "X", "hello");
    QKLogCString(3, true, nullptr, kNoFormat);
    QKLog(3, true, nullptr, nullptr);
    QKLog(8, true, "X", Text(u"hello"));
    EXPECT_TRUE(world.records.empty() && world.lines.empty());
    for (std::uint32_t level = 0; level <= 7; ++level) {
        QKLogCString(level, true, "X", kNoFormat);
        EXPECT_EQ(world.records.back().fields[LogRecord::Level].second, std::to_string(level));
    }
    EXPECT_EQ(world.lines.size(), 8U);
}

TEST(Log, TheEnvironmentDecidesAtEveryCallWhoGetsALineOnStandardErrorAndBanners) {
    using enum StandardError::Kind;
    for (const char* value : {"", static_cast<const char*>(nullptr)}) {
        setEnvironment("CFLOG_FORCE_STDERR", value);
        setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", value);
        EXPECT_EQ(QKLogWithSyslogBanner(), value == nullptr);
        for (int bits = 0; bits < 4; ++bits)
            for (const auto kind : {Unusable, RegularFile, Pipe, Socket, Other}) {
                LogWorld world;
                world.hasRaisedRights = (bits & 2) != 0;
                world.managed = (bits & 1) != 0;
                world.kind = kind;
                QKLogCString(6, false, nullptr, "x");
                const bool isLine = (value != nullptr && !world.hasRaisedRights) ||
                                    kind == RegularFile || (kind != Unusable && !world.managed);
                EXPECT_EQ(world.lines.size(), isLine ? 1U : 0U) << bits << static_cast<int>(kind);
                EXPECT_EQ(world.message(), "x");
            }
    }
}

TEST(Log, ObjectFormatsAreReadTwice) {
    const Text object(u"caf\u00E9 50%%");
    const std::pair<const char16_t*, const char*> rows[] = {{u"100%%", "100%"},
                                                            {u"100%%%%%%", "100%%"},
                                                            {u"%%d and %%s", "%d and %s"},
                                                            {u"%%%%%%%%", "%%"},
                                                            {u"%@|%@", "caf\xC3\xA9 50%|(null)"}};
    LogWorld world;
    for (const auto& [format, expected] : rows) {
        QKLog(6, false, "X", Text(format), static_cast<const VLString*>(object), nullptr);
        EXPECT_EQ(world.message(), expected);
        world.forget();
    }
    QKLog(6, false, "X", Text(u"cut\0here"sv));
    EXPECT_EQ(world.message(), "cut");
}

template <auto kLog, typename Format>
void wrapper(Format format, ...) {
    va_list arguments;
    va_start(arguments, format);
    kLog(6, false, nullptr, format, arguments);
    va_end(arguments);
}
constexpr auto wrapped = wrapper<QKLogCStringV, const char*>;
constexpr auto wrappedObject = wrapper<QKLogV, const VLString*>;

TEST(Log, LongTextsWrappersAndTextsThatPrintfRefuses) {
    LogWorld world;
    for (const int length : {1022, 1023, 1024, 1025, 200'000})
        for (const bool isObject : {false, true}) {
            isObject ? wrappedObject(Text(u"%0*d"), length, 7) : wrapped("%0*d", length, 7);
            EXPECT_EQ(world.message(),
                      std::string(static_cast<std::size_t>(length - 1), '0') + "7");
            world.forget();
        }
    QKLogCString(6, false, nullptr, "cut%chere", 0);
    EXPECT_EQ(world.line(), "cut\n");
    world.forget();
    const char* const noObject = "no object: %@ %s";
    wrapped(noObject, "text");
    EXPECT_EQ(world.message(), noObject);
    world.forget();
    logMessage(6, Banner::No, nullptr, std::string(2 * kLongestText, 'x'));
    EXPECT_EQ(world.message().size(), kLongestText);
    EXPECT_TRUE(world.message().ends_with(kCutMark));
}

TEST(Log, TheLocaleOfTheHostChangesNothing) {
    const testing::TemporaryFolder folder;
    const std::string locale = folder / "de_DE.UTF-8";
    const std::string make = "localedef -i de_DE -f UTF-8 " + locale + " >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0)  // NOLINT(concurrency-mt-unsafe): one thread
        GTEST_SKIP() << "needs the program localedef and its data (package locales)";
    EXPECT_TRUE(testing::holdsInChild([&] {
        setEnvironment("LOCPATH", folder.path.c_str());
        // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
        if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) return false;
        std::array<char, 8> comma{};
        std::snprintf(comma.data(), comma.size(), "%.1f", 1.5);
        LogWorld world;
        errno = ENOENT;
        wrapped("%.1f %'d %m", 1.5, 1234567);
        wrappedObject(Text(u"%.1f %Lg"), 1.5, 2.5L);
        return comma.data() == std::string("1,5") &&
               world.records[0].fields.back().second == "1.5 1234567 No such file or directory" &&
               world.records[1].fields.back().second == "1.5 2.5";
    }));
}

TEST(Log, ErrnoIsKeptAndCanBeLogged) {
    LogWorld world;
    world.whenSending = [] { errno = EIO; };
    errno = ENOSPC;
    for (const bool isObject : {false, true}) {
        isObject ? wrappedObject(Text(u"%d %m"), 1) : wrapped("%d %m", 1);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_EQ(world.message(), "1 No space left on device");
        world.forget();
    }
}

TEST(Log, ACancelledThreadEndsItsLine) {
    LogWorld world;
    world.whenSending = ::pthread_testcancel;  // as every system call is one
    EXPECT_TRUE(testing::isCancelledOnlyAfter([] { QKLogCString(6, false, nullptr, "hello"); }));
    EXPECT_EQ(world.line(), "hello\n");
}

}  // namespace
}  // namespace veltra
