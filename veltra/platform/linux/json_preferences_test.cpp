#include "veltra/platform/linux/json_preferences.h"

#include "veltra/platform/detail/json_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;

// All steps of replacing a file fail from some step on, with an error or (0) with the process.
int s_stepsLeft = 0;
int s_error = 0;

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

class JsonPreferencesTest : public testing::Test {
protected:
    ~JsonPreferencesTest() override { fs::remove_all(m_folder); }

    static std::string contents(const fs::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void store(const std::string& text) const {
        fs::create_directories(m_file.parent_path());
        std::ofstream(m_file) << text;
    }
    // What the file holds for a process that starts now.
    PropertyValue stored(std::string_view key) const {
        return JsonPreferences(m_file.string()).value(key);
    }

    fs::path m_folder = fs::temp_directory_path() / ("veltra-" + std::to_string(::getpid()));
    fs::path m_file = m_folder / "config" / "host.json";
};

TEST_F(JsonPreferencesTest, MergesOnlyItsOwnChangesAndReadsOthersWhenAsked) {
    JsonPreferences preferences(m_file.string());
    EXPECT_TRUE(preferences.setValue("mine", 1));
    EXPECT_TRUE(preferences.setValue("bad\xFFkey", 1));
    EXPECT_EQ(preferences.value("bad\xFFkey"), 1);
    EXPECT_FALSE(fs::exists(m_file));
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(m_file.parent_path()).permissions(), fs::perms(0700));
    EXPECT_EQ(contents(m_file), jsonFromDictionary({{"bad\uFFFDkey", 1}, {"mine", 1}}));

    preferences.setValue("mine", 2);
    preferences.setValue("gone", nullptr);
    store(R"({"mine": 3, "theirs": 3, "gone": 3})");
    EXPECT_TRUE(preferences.value("theirs").isNull());
    EXPECT_FALSE(preferences.reload());
    EXPECT_EQ(preferences.value("theirs"), 3);
    EXPECT_EQ(preferences.value("mine"), 2);
    EXPECT_TRUE(preferences.value("gone").isNull());
    store(R"({"mine": 4, "theirs": 4, "gone": 4})");
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(contents(m_file), jsonFromDictionary({{"mine", 2}, {"theirs", 4}}));
    EXPECT_EQ(preferences.value("theirs"), 4);
}

TEST_F(JsonPreferencesTest, WritersInTwoProcessesAndTwoThreadsLoseNothing) {
    const auto writeMany = [&](const std::string& prefix) {
        failAfter(std::numeric_limits<int>::max(), EIO);
        JsonPreferences preferences(m_file.string(), kFailingCalls);
        for (int number = 0; number < 40; ++number) {
            preferences.setValue(prefix + std::to_string(number), number);
            if (preferences.synchronise()) return false;
        }
        return true;
    };
    const pid_t child = ::fork();
    if (child == 0) ::_exit(writeMany("child") ? 0 : 1);
    EXPECT_TRUE(writeMany("parent"));
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);

    JsonPreferences shared(m_file.string());
    const auto setMany = [&](const std::string& prefix) {
        for (int number = 0; number < 40; ++number) {
            shared.setValue(prefix + std::to_string(number), number);
            EXPECT_FALSE(number % 16 == 0 && shared.synchronise());
        }
    };
    std::thread other(setMany, "other");
    setMany("this");
    other.join();
    EXPECT_FALSE(shared.synchronise());
    for (const char* prefix : {"child", "parent", "other", "this"}) {
        for (int number = 0; number < 40; ++number) {
            EXPECT_EQ(stored(prefix + std::to_string(number)), number) << prefix;
        }
    }
}

TEST_F(JsonPreferencesTest, AFailedOrInterruptedWriteLeavesTheOldFileAndKeepsTheChanges) {
    const std::string before = jsonFromDictionary({{"key", "old"}});
    const std::string after = jsonFromDictionary({{"key", "new"}});
    int failures = 0;
    for (std::string found = before; found == before; ++failures) {
        store(before);
        JsonPreferences preferences(m_file.string(), kFailingCalls);
        preferences.setValue("key", "new");
        failAfter(failures, 0);
        const pid_t child = ::fork();
        if (child == 0) ::_exit(preferences.synchronise().value());
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        found = contents(m_file);
        if (found != before) break;

        const auto fileCount = std::distance(fs::directory_iterator(m_file.parent_path()), {});
        failAfter(failures, ENOSPC);
        EXPECT_EQ(preferences.synchronise(), std::errc::no_space_on_device);
        EXPECT_EQ(contents(m_file), before);
        EXPECT_EQ(std::distance(fs::directory_iterator(m_file.parent_path()), {}), fileCount);
        EXPECT_EQ(preferences.value("key"), "new");
        failAfter(1000, EIO);
        EXPECT_FALSE(preferences.synchronise());
        EXPECT_EQ(contents(m_file), after);
    }
    EXPECT_EQ(contents(m_file), after);
    EXPECT_EQ(failures, static_cast<int>(after.size() + 4) / 5 + 2);  // writes, flush, rename
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
        EXPECT_EQ(contents(report->keptAs), sound.substr(0, length));
        EXPECT_FALSE(preferences.takeDamageReport());
        EXPECT_FALSE(fs::exists(m_file));
    }
    store("{");
    JsonPreferences preferences(m_file.string(), kFailingCalls);
    preferences.setValue("key", 1);
    failAfter(0, EIO);
    EXPECT_EQ(preferences.synchronise(), std::errc::io_error);
    EXPECT_EQ(contents(m_file), "{");
    EXPECT_EQ(preferences.takeDamageReport()->keptAs, "");
    EXPECT_EQ(preferences.reload(), std::errc::io_error);
    EXPECT_FALSE(preferences.takeDamageReport());
    failAfter(1000, EIO);
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(stored("key"), 1);
    EXPECT_NE(preferences.takeDamageReport()->keptAs, "");
}

TEST_F(JsonPreferencesTest, DamageThatAnotherProcessRepairsMeanwhileIsNoDamage) {
    static fs::path s_file;
    s_file = m_file;
    FileCalls calls = kSystemFileCalls;
    calls.read = [](int file, void* buffer, std::size_t size) {
        const ssize_t count = ::read(file, buffer, size);
        if (count == 1 && fs::remove(s_file)) std::ofstream(s_file) << R"({"key": 1})";
        return count;
    };
    store("{");
    JsonPreferences preferences(m_file.string(), calls);
    EXPECT_EQ(preferences.value("key"), 1);
    EXPECT_FALSE(preferences.takeDamageReport());
    EXPECT_TRUE(fs::exists(m_file));
}

TEST_F(JsonPreferencesTest, WritesThroughLinksKeepsModesAndRefusesWhatIsNoFile) {
    fs::create_directories(m_file.parent_path());
    fs::create_directories(m_folder / "elsewhere");
    fs::create_symlink("../elsewhere/real.json", m_file);
    JsonPreferences preferences(m_file.string());
    preferences.setValue("key", 1);
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_TRUE(fs::is_symlink(m_file));
    fs::permissions(m_file, fs::perms(0640));
    preferences.setValue("key", 2);
    EXPECT_FALSE(preferences.synchronise());
    EXPECT_EQ(contents(m_folder / "elsewhere/real.json"), jsonFromDictionary({{"key", 2}}));
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms(0640));

    fs::remove(m_file);
    fs::create_symlink("host.json", m_file);
    EXPECT_EQ(preferences.reload(), std::errc::too_many_symbolic_link_levels);
    fs::remove(m_file);
    ASSERT_EQ(::mkfifo(m_file.c_str(), 0600), 0);
    preferences.setValue("key", 3);
    EXPECT_EQ(preferences.synchronise(), std::errc::invalid_argument);
    EXPECT_EQ(preferences.value("key"), 3);
}

TEST_F(JsonPreferencesTest, BelongsToTheProgramInTheFolderOfTheUser) {
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs
    const fs::path home = m_folder;
    ::setenv("HOME", home.c_str(), 1);
    const std::string program = program_invocation_short_name;
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(JsonPreferences().path(), home / ".config" / (program + ".json"));
    ::setenv("HOME", "relative", 1);
    EXPECT_THAT(JsonPreferences().path(), testing::MatchesRegex("/.*/.config/.*json"));
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", "/etc/me", 1);
    // NOLINTEND(concurrency-mt-unsafe)

    JsonPreferences preferences;
    for (const std::string& name : {std::string(), std::string("."), std::string("a/b"),
                                    std::string("a\n"), std::string(201, 'a')}) {
        EXPECT_FALSE(preferences.setApplicationName(name)) << name;
    }
    EXPECT_TRUE(preferences.setApplicationName("My Host"));
    EXPECT_EQ(preferences.path(), "/etc/me/My Host.json");
    EXPECT_FALSE(preferences.setApplicationName("Other"));

    Preferences* own = &Preferences::current();
    EXPECT_EQ(Preferences::install(&preferences), nullptr);
    EXPECT_EQ(&Preferences::current(), &preferences);
    EXPECT_EQ(Preferences::install(nullptr), &preferences);
    EXPECT_EQ(&Preferences::current(), own);
}

}  // namespace
}  // namespace veltra
