// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/json_preferences.h"

#include "veltra/base/json_text.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;

// All steps of replacing a file fail from some step on, with an error or (0) with the process.
int s_stepsLeft = 0, s_error = 0;

void failAfter(int steps, int error) {
    s_stepsLeft = steps, s_error = error;
}

int failed() {
    if (s_stepsLeft-- > 0) return 0;
    if (s_error == 0) ::_exit(0);
    errno = s_error;
    return -1;
}

constexpr FileCalls kFailingCalls{
    ::read,
    [](int file, const void* text, std::size_t size) {
        return failed() != 0 ? -1 : ::write(file, text, std::min<std::size_t>(size, 5));
    },
    [](int) { return failed(); },
    [](const char* from, const char* to) { return failed() != 0 ? -1 : ::rename(from, to); }};

// Every other call is interrupted by a signal.
bool s_isInterrupted = false;

bool isInterrupted() {
    errno = EINTR;
    return s_isInterrupted = !s_isInterrupted;
}

constexpr FileCalls kInterruptedCalls{
    [](int file, void* text, std::size_t size) {
        return isInterrupted() ? -1 : ::read(file, text, size);
    },
    [](int file, const void* text, std::size_t size) {
        return isInterrupted() ? -1 : ::write(file, text, std::min<std::size_t>(size, 5));
    },
    [](int) { return isInterrupted() ? -1 : 0; }, ::rename};

using testing::textOf;

class JsonPreferencesTest : public ::testing::Test {
protected:
    void store(const std::string& text) const { testing::putText(m_file, text); }

    testing::TemporaryFolder m_folder;
    fs::path m_file = m_folder.path / "config" / "host.json";
    JsonPreferences m_preferences{m_file.string()};
};

TEST_F(JsonPreferencesTest, MergesOnlyItsOwnChangesAndReadsOthersWhenAsked) {
    EXPECT_TRUE(m_preferences.setValue("mine", 1) && m_preferences.setValue("bad\xFFkey", 1));
    EXPECT_EQ(m_preferences.value("bad\xFFkey"), 1);
    EXPECT_FALSE(fs::exists(m_file) || m_preferences.synchronise());
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(m_file.parent_path()).permissions(), fs::perms(0700));
    EXPECT_EQ(textOf(m_file), jsonFromDictionary({{"bad\uFFFDkey", 1}, {"mine", 1}}));

    m_preferences.setValue("mine", 2);
    m_preferences.setValue("gone", nullptr);
    store(R"({"mine": 3, "theirs": 3, "gone": 3})");
    EXPECT_TRUE(m_preferences.value("theirs").isNull() && !m_preferences.reload());
    EXPECT_TRUE(m_preferences.value("theirs") == 3 && m_preferences.value("mine") == 2 &&
                m_preferences.value("gone").isNull());
    store(R"({"mine": 4, "theirs": 4, "gone": 4})");
    EXPECT_FALSE(m_preferences.synchronise());
    EXPECT_EQ(textOf(m_file), jsonFromDictionary({{"mine", 2}, {"theirs", 4}}));
    EXPECT_EQ(m_preferences.value("theirs"), 4);
}

TEST_F(JsonPreferencesTest, WritersInTwoProcessesAndTwoThreadsLoseNothing) {
    const auto writeMany = [](JsonPreferences& preferences, char prefix) {
        bool isWritten = true;
        for (int number = 0; number < 40; ++number) {
            preferences.setValue(prefix + std::to_string(number), number);
            isWritten = !preferences.synchronise() && isWritten;
        }
        return isWritten;
    };
    const testing::Child child([&] {
        JsonPreferences ofChild(m_file.string());
        return writeMany(ofChild, 'a');
    });
    std::thread other([&] { EXPECT_TRUE(writeMany(m_preferences, 'b')); });
    EXPECT_TRUE(writeMany(m_preferences, 'c'));
    other.join();
    EXPECT_TRUE(child.holds());
    PropertyValue::Dictionary all;
    for (const char prefix : {'a', 'b', 'c'})
        for (int number = 0; number < 40; ++number)
            all[prefix + std::to_string(number)] = number;
    EXPECT_EQ(textOf(m_file), jsonFromDictionary(all));
}

TEST_F(JsonPreferencesTest, NeitherReadersNorForkedChildrenWaitForAWriter) {
    static JsonPreferences* writer;
    static int answers;
    answers = 0;
    FileCalls calls = kSystemFileCalls;
    calls.fsync = [](int) {  // of the file, then of its folder
        const auto isThere = [] { return writer->value("key") == 1; };
        answers += isThere() && writer->setValue("later", 1);
        answers += testing::holdsInChild([&] { return !writer->reload() && isThere(); });
        return 0;
    };
    JsonPreferences preferences(m_file.string(), calls);
    writer = &preferences;
    EXPECT_TRUE(preferences.value("key").isNull() && preferences.setValue("key", 1));
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(answers, 4);
    EXPECT_EQ(preferences.value("later"), 1);
}

TEST_F(JsonPreferencesTest, AFailedOrInterruptedWriteLeavesTheOldFileAndKeepsTheChanges) {
    const std::string before = jsonFromDictionary({{"key", "old"}});
    const std::string after = jsonFromDictionary({{"key", "new"}});
    int failures = 0;
    for (;; ++failures) {
        store(before);
        JsonPreferences preferences(m_file.string(), kFailingCalls);
        preferences.setValue("key", "new");
        failAfter(failures, 0);
        EXPECT_TRUE(testing::holdsInChild([&] { return !preferences.synchronise(); }));
        if (textOf(m_file) != before) break;

        const auto fileCount = std::distance(fs::directory_iterator(m_file.parent_path()), {});
        preferences.setValue("key", "newer");
        failAfter(failures, ENOSPC);
        EXPECT_EQ(preferences.synchronise(), std::errc::no_space_on_device);
        EXPECT_EQ(textOf(m_file), before);
        EXPECT_EQ(std::distance(fs::directory_iterator(m_file.parent_path()), {}), fileCount);
        EXPECT_TRUE(preferences.value("key") == "newer" && preferences.setValue("key", "new"));
        EXPECT_EQ(preferences.value("key"), "new");
        failAfter(1000, EIO);
        EXPECT_FALSE(preferences.synchronise());
        EXPECT_EQ(textOf(m_file), after);
    }
    EXPECT_EQ(textOf(m_file), after);
    EXPECT_EQ(failures, static_cast<int>(after.size() + 4) / 5 + 2);  // writes, flush, rename
}

TEST_F(JsonPreferencesTest, InterruptedCallsAreRepeatedAndWhatIsThereIsNotWrittenAgain) {
    JsonPreferences interrupted(m_file.string(), kInterruptedCalls);
    interrupted.setValue("key", "a long value");
    EXPECT_FALSE(interrupted.synchronise() || interrupted.reload());
    EXPECT_EQ(interrupted.value("key"), "a long value");
    FileCalls calls = kInterruptedCalls;
    calls.write = [](int, const void*, std::size_t) {
        errno = EINTR;
        return ssize_t{0};
    };
    JsonPreferences stuck(m_file.string(), calls);
    stuck.setValue("key", 1);
    EXPECT_EQ(stuck.synchronise(), std::errc::io_error)
        << "nothing is written, whatever errno says";
    JsonPreferences same(m_file.string(), kFailingCalls);
    same.setValue("key", "a long value");
    same.setValue("none", nullptr);
    failAfter(0, EIO);
    EXPECT_FALSE(same.synchronise());
}

TEST_F(JsonPreferencesTest, LinksLeadToTheFileAndWhatIsNoFileIsLeftAlone) {
    const fs::path folder = m_file.parent_path(), real = m_folder.path / "real/kept.json";
    fs::create_directories(folder / "dots");
    fs::create_symlink("dots/link", m_file);
    fs::create_symlink(real, folder / "dots/link");
    m_preferences.setValue("key", 1);
    EXPECT_FALSE(m_preferences.synchronise());
    EXPECT_TRUE(fs::is_symlink(m_file) && fs::is_symlink(folder / "dots/link"));
    EXPECT_EQ(textOf(real), jsonFromDictionary({{"key", 1}}));
    constexpr fs::perms kForTheGroup{0640};
    fs::permissions(real, kForTheGroup);
    m_preferences.setValue("key", 3);
    EXPECT_FALSE(m_preferences.synchronise());
    EXPECT_EQ(fs::status(real).permissions(), kForTheGroup);

    store("");
    fs::resize_file(m_file, PreferencesFile::kMaximumSize + 1);
    EXPECT_EQ(m_preferences.reload(), std::errc::file_too_large);
    m_preferences.setValue("key", 2);
    for (const auto& [put, error] :
         {std::pair(
              +[](const fs::path& file) { fs::create_symlink(file.filename(), file); },
              std::errc::too_many_symbolic_link_levels),
          {+[](const fs::path& file) { fs::create_directory(file); },
           std::errc::invalid_argument}}) {
        fs::remove(m_file);
        put(m_file);
        EXPECT_EQ(m_preferences.reload(), error);
        EXPECT_EQ(m_preferences.synchronise(), error);
        EXPECT_EQ(m_preferences.value("key"), 2);
    }
}

TEST_F(JsonPreferencesTest, ADamagedFileIsKeptAsideReportedOnceAndReadAsEmpty) {
    const std::string sound = R"({"text": "\u00e4\ud834\udd1e", "list": [1, -2.5e3, true, null]})";
    for (std::size_t length = 0; length < sound.size(); ++length) {
        store(sound.substr(0, length));
        JsonPreferences preferences(m_file.string());
        EXPECT_TRUE(preferences.value("text").isNull());
        const auto report = preferences.takeDamageReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(report->file, m_file);
        EXPECT_EQ(report->keptAs, m_file.string() + ".damaged-" + std::to_string(length + 1));
        EXPECT_EQ(textOf(report->keptAs), sound.substr(0, length));
        EXPECT_FALSE(preferences.takeDamageReport() || fs::exists(m_file));
    }
    store("{");
    JsonPreferences preferences(m_file.string(), kFailingCalls);
    preferences.setValue("key", 1);
    failAfter(0, EIO);
    EXPECT_EQ(preferences.synchronise(), std::errc::io_error);
    EXPECT_EQ(preferences.takeDamageReport()->keptAs, "");
    EXPECT_EQ(preferences.reload(), std::errc::io_error);
    EXPECT_FALSE(preferences.takeDamageReport() || textOf(m_file) != "{");
    failAfter(1000, EIO);
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(textOf(m_file), jsonFromDictionary({{"key", 1}}));
    EXPECT_NE(preferences.takeDamageReport()->keptAs, "");
}

TEST_F(JsonPreferencesTest, BelongsToTheProgramInTheFolderOfTheUser) {
    const auto pathWith = [](const char* home, const char* configuration) {
        ::setenv("HOME", home, 1);                      // NOLINT(concurrency-mt-unsafe): one thread
        ::setenv("XDG_CONFIG_HOME", configuration, 1);  // NOLINT(concurrency-mt-unsafe): likewise
        return JsonPreferences().path();
    };
    const std::string program = program_invocation_short_name;
    EXPECT_EQ(pathWith("/home/me", "relative"), "/home/me/.config/" + program + ".json");
    EXPECT_THAT(pathWith("relative", "relative"), ::testing::MatchesRegex("/.*/.config/.*json"));
    EXPECT_EQ(pathWith("/home/me", "/etc/me"), "/etc/me/" + program + ".json");

    JsonPreferences preferences;
    const std::string longName(201, 'a');
    for (const std::string_view name : {"", ".", "a/b", "a\n", "a\x7F", longName.c_str()})
        EXPECT_FALSE(preferences.setApplicationName(name)) << name;
    EXPECT_TRUE(preferences.setApplicationName("My Host"));
    EXPECT_EQ(preferences.path(), "/etc/me/My Host.json");
    EXPECT_FALSE(preferences.setApplicationName("Other"));
}

}  // namespace
}  // namespace veltra
