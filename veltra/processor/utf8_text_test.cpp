#include "veltra/processor/utf8_text.h"

#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/text_services.h"
#include "veltra/processor/testing/utf8_laws.h"

#include <random>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

namespace veltra {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;

// Memory between two pages that nobody may touch.
class GuardedPages {
public:
    GuardedPages() {
        m_pages = static_cast<char*>(
            ::mmap(nullptr, 4 * page(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        ::mprotect(first(), 2 * page(), PROT_READ | PROT_WRITE);
    }
    ~GuardedPages() { ::munmap(m_pages, 4 * page()); }

    static std::size_t page() { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }
    char* first() const { return m_pages + page(); }

    std::string_view atStart(std::string_view text) const { return put(first(), text); }
    std::string_view atEnd(std::string_view text) const {
        return put(first() + 2 * page() - text.size() - 1, text);
    }

private:
    static std::string_view put(char* place, std::string_view text) {
        place[text.copy(place, text.size())] = '\0';
        return {place, text.size()};
    }

    char* m_pages = nullptr;
};

TEST(Utf8Text, EveryVariantAgreesWithTheSlowReferenceOnAllShortTexts) {
    const GuardedPages pages;
    constexpr std::string_view kBytes = "a\xA9\xC3\xE2\xF0\xF8\xFC\xFD\xFE\xFF";
    for (std::size_t number = 0; number < 11 * 11 * 11 * 11; ++number) {
        std::string text;
        for (std::size_t rest = number; rest > 0; rest /= 11)
            if (rest % 11 > 0) text += kBytes[rest % 11 - 1];
        ASSERT_EQ(brokenLaw(pages.atEnd(text)), "") << testing::PrintToString(text);
    }
}

TEST(Utf8Text, EveryVariantAgreesOnLongTextsOfEveryPlaceAndReadsNoOtherPage) {
    const GuardedPages pages;
    std::mt19937 random(1);
    int valid = 0;
    for (std::size_t round = 0; round < 1500; ++round) {
        const std::size_t size = 1 + random() % 700;
        std::string text;
        while (text.size() < size) {
            constexpr std::string_view kParts[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xB5"};
            text.append(random() % (round % 3 == 0 ? 300 : 4), 'a').append(kParts[random() % 3]);
        }
        for (std::size_t faults = round % 2 * (random() % 3); faults > 0; --faults)
            text[random() % text.size()] = static_cast<char>(
                "\x80\xC3\xE2\xF0\xF9\xFD"
                "a"[random() % 7]);
        valid += slowCheck(text) ? 1 : 0;
        ASSERT_EQ(brokenLaw(pages.atEnd(text)), "") << testing::PrintToString(text);
        ASSERT_EQ(brokenLaw(pages.atStart(text)), "") << testing::PrintToString(text);
    }
    EXPECT_THAT(valid, testing::AllOf(testing::Gt(500), testing::Lt(1400)));
}

TEST(Utf8Text, TheChoiceOfTheVariantCanBeAskedAndOverridden) {
    EXPECT_TRUE(chooseUtf8Kernels("plain"));
    EXPECT_FALSE(chooseUtf8Kernels("abacus"));
    EXPECT_STREQ(utf8Kernels().name, "plain");
    EXPECT_TRUE(chooseUtf8Kernels(""));
    EXPECT_EQ(&utf8Kernels(), utf8KernelVariants().front());
}

TEST(Utf8Text, NullAndNoRoomHaveNeutralAnswers) {
    char byte = '#';
    EXPECT_EQ(utf8_strlen(nullptr), 0U);
    EXPECT_EQ(utf8_check(nullptr) + utf8_is_ascii(nullptr, 0) + utf8_verify(), 0);
    EXPECT_EQ(utf8_strncpy(nullptr, "a", 1), nullptr);
    EXPECT_EQ(*utf8_strlcpy(&byte, "a", 0), '#');
    utf8_from_cfstring(&byte, nullptr, 0);
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(*utf8_strncpy(&byte, nullptr, 1), '\0');
    EXPECT_EQ(utf8_to_cfstring(""), nullptr);
    EXPECT_EQ(utf8_to_nsstring("\xED\xA0\x80"), nullptr);
    EXPECT_EQ(utf8_to_fileSystemRepresentation(&byte, "a", 1), 0);
}

TEST(Utf8Text, AStringObjectIsCutByUnitsAndThenByWholeCharacters) {
    const VLString* string = utf8_to_nsstring("ab\xF0\x9F\x8E\xB5z");
    std::vector<std::string> copies;
    for (std::size_t capacity = 1; capacity < 9; ++capacity) {
        std::vector<char> buffer(capacity, '#');
        utf8_from_nsstring(buffer.data(), string, capacity);
        copies.emplace_back(buffer.data());
    }
    const std::string all = "ab\xF0\x9F\x8E\xB5z";
    EXPECT_THAT(copies, ElementsAre("", "a", "ab", "ab?", "ab", "ab", "ab\xF0\x9F\x8E\xB5", all));
    VLStringRelease(string);
}

TEST(Utf8Text, TheLogGetsTheTextAsItStandsOrTheComplaint) {
    LogWorld world;
    utf8_log(nullptr);
    utf8_trace("");
    utf8_log("100%% caf\xC3\xA9 %@");
    utf8_log("\xFF");
    utf8_trace("\xC0\x80");
    utf8_trace("caf\xC3\xA9");
    std::vector<std::string> messages;
    for (const LogWorld::Record& record : world.records)
        messages.push_back(*record.fields[LogRecord::Message].second);
    EXPECT_THAT(messages, ElementsAre("100%% caf\xC3\xA9 %@", "utf8_log: malformed string",
                                      "utf8_trace: malformed string", "caf\xC3\xA9"));
    ASSERT_EQ(world.lines.size(), 5U);
    EXPECT_EQ(world.lines[3], "text of 5 bytes: caf\xC3\xA9\n");
}

TEST(Utf8Text, TheLegacyEncodingSubstitutesCutsAndTellsWhatWasLost) {
    if (!TextServices::current().fromLegacy("a")) GTEST_SKIP() << "no legacy converter";
    const struct {
        const char* source;
        std::size_t capacity;
        std::string_view expected;
        const char* lost;
    } rows[] = {
        {"caf\xC3\xA9 \xE2\x82\xAC", 9, "caf\x8E \xDB"sv, nullptr},
        {"\xCE\xA9\xE4\xB8\x80\xF0\x9F\x8E\xB5!", 9, "\xBD__!"sv, "\xCE\xA9__!"},
        {"caf\xC3\xA9", 4, "caf"sv, "caf"},
        {"caf\xC3\xA9", 1, ""sv, nullptr},
        {"\xC3", 9, ""sv, nullptr},
        {"", 0, ""sv, nullptr},
    };
    for (const auto& row : rows) {
        for (const bool isPascal : {false, true}) {
            std::vector<char> buffer(row.capacity + 1, '#');
            const VLString* lost = nullptr;
            (isPascal ? utf8_to_fsspecFileSystemPascalString : utf8_to_fsspecFileSystemCString)(
                buffer.data(), row.source, row.capacity, &lost);
            const std::string_view text(buffer.data() + isPascal, row.expected.size());
            EXPECT_EQ(text, row.expected) << row.source;
            EXPECT_EQ(isPascal ? buffer[0] : buffer[text.size()], isPascal ? text.size() : 0U);
            std::vector<char> lostText(32);
            utf8_from_cfstring(lostText.data(), lost, lostText.size());
            EXPECT_STREQ(lostText.data(), row.lost != nullptr ? row.lost : "") << row.source;
            VLStringRelease(lost);
        }
    }
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::u16string units = TextServices::current().fromLegacy(bytes).value();
    std::string again(300, '#');
    EXPECT_EQ(TextServices::current().toLegacy(units, '_', again), 256U);
    EXPECT_EQ(again.substr(0, 256), bytes);
    char longName[301];
    utf8_to_fsspecFileSystemPascalString(longName, std::string(300, 'x').c_str(), 301, nullptr);
    EXPECT_EQ(longName[0], static_cast<char>(254));
}

}  // namespace
}  // namespace veltra
