// SPDX-License-Identifier: MIT
// The program as its user sees it: reports, log lines, exit status.
#include "report.h"

#include "interruption.h"
#include "options.h"
#include "requests.h"
#include "status_lines.h"
#include "terminal_progress.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/progress_indicator.h"
#include "veltra/platform/termination.h"
#include "veltra/platform/testing/fake_user.h"

#include <chrono>

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

namespace veltra::console {
namespace {

using namespace testing;
using namespace ::testing;

struct Outcome {
    int status;
    std::string output;
    std::string log;
};

Outcome console(const std::string& arguments) {
    const std::string out = folder() + "out";
    const std::string log = folder() + "log";
    const int status = shell(
        "setsid -w env -u DISPLAY -u WAYLAND_DISPLAY CFLOG_FORCE_STDERR=1 " VELTRA_CONSOLE " " +
        arguments + " >" + out + " 2>" + log);
    return {status, contents(out), contents(log)};
}

// The value of line `name` in a report's block for the file `path`, which must be there.
std::string value(const std::string& report, const std::string& path, const std::string& name) {
    const std::size_t block = report.find(path + "\n");
    const std::size_t line = report.find("\n  " + name + " ", block);
    if (line == std::string::npos || line > report.find("\n\n", block)) {
        ADD_FAILURE() << path << " has no line " << name;
        return {};
    }
    return report.substr(line + 15, report.find('\n', line + 1) - line - 15);
}

double number(const std::string& report, const std::string& path, const std::string& name) {
    return std::atof(value(report, path, name).c_str());
}

// That every variant is read right is proved by the tests of AudioFile.
TEST(Report, WhatANarrowFormatRoundsToItsLargestValueIsAtFullScaleAndNothingElseChanges) {
    SKIP_WITHOUT_RECORDINGS();
    for (const char* effects : {"", "gain 14.3"}) {  // as recorded, and so loud that it clips
        const std::string best = recording("guit_em9", "-b 32", "32.wav", effects);
        const Planar samples = readAll(best);
        for (const auto& [bits, step] : {std::pair{"-b 16", 1.0F / 32768}, {"-b 8", 1.0F / 128}}) {
            const std::string path = recording("guit_em9", bits, "narrow.wav", effects);
            const Outcome run =
                console(std::string("--headless ").append(best).append(" ").append(path));
            EXPECT_EQ(run.status, 0);
            EXPECT_THAT(run.log, IsEmpty());
            for (const char* line : {"peak", "rms"})
                EXPECT_NEAR(number(run.output, path, line), number(run.output, best, line),
                            step / 2 + 1.2e-7F);
            for (const char* line : {"rate", "channels", "length", "end"})
                EXPECT_EQ(value(run.output, path, line), value(run.output, best, line));
            // No less than is beyond the largest value, no more than is beyond it less half a step.
            const auto countFrom = [&samples](float level) {
                double count = 0;
                for (const auto& channel : samples)
                    for (const float sample : channel)
                        count += std::abs(sample) >= level ? 1 : 0;
                return count;
            };
            EXPECT_LE(countFrom(1.0F - step), number(run.output, path, "full scale")) << bits;
            EXPECT_GE(countFrom(1.0F - 1.5F * step), number(run.output, path, "full scale"));
            EXPECT_EQ(countFrom(1.0F - step) > 0, effects[0] != '\0');
        }
    }
}

TEST(Report, NamesTheChannelsOfASurroundFileAndTheLoudestOfEachSecond) {
    const std::string path = surroundVoices("voices.wav");
    if (path.empty()) GTEST_SKIP() << "the package alsa-utils is not installed here";
    const Outcome run = console("--headless --report - " + path);
    EXPECT_EQ(value(run.output, path, "layout"), "5.1, MPEG 5.1 A: L R C LFE Ls Rs");
    EXPECT_EQ(value(run.output, path, "loudest"),
              "L 0-1, R 2-3, C 4-5, LFE 6-7, Ls 8-9, Rs 10-11 s");
}

TEST(Report, BadFilesGetALineEachAndTheOthersStillRun) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string good = recording("guit_em9", "-b 24", "good.aiff", "trim 0 0.2");
    const std::string cut = cutShort(good, 0.5, "cut.aiff");
    writeFile(folder() + "empty.wav", "");
    writeFile(folder() + "text.wav", "no sound in here\n");
    writeFile(folder() + "noise.mp3", "\xFF\xFB\x90\x64" + std::string(9000, 'x'));
    const std::array<const char*, 5> bad{"missing.wav", "empty.wav", "text.wav", "noise.mp3", ""};
    std::string arguments = " --report " + folder() + "report " + cut + " " + good;
    for (const char* name : bad)
        arguments.append(" ").append(folder()).append(name);
    for (const char* mode : {"--headless", "--device null"}) {
        SCOPED_TRACE(mode);
        const Outcome run = console(mode + arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_EQ(std::count(run.log.begin(), run.log.end(), '\n'), 6) << run.log;
        const std::string report = contents(folder() + "report");
        for (const char* name : bad) {
            EXPECT_THAT(value(report, folder() + name, "error"), HasSubstr("; ")) << name;
            EXPECT_THAT(run.log, HasSubstr("veltra-console: " + folder() + name + ": "));
        }
        EXPECT_THAT(value(report, cut, "note"), HasSubstr("breaks off"));
        EXPECT_THAT(run.log, HasSubstr("veltra-console: " + cut + ": the file breaks off"));
        EXPECT_GT(number(report, good, "rms"), 0.01);
        EXPECT_EQ(value(report, good, "length"), "0.200000 s  8820 frames");
    }
}

// What is in the place of the mix must be a mix, or nothing.
TEST(Bounce, IsTheSumOfItsFilesInEveryFormatAndTheSameBytesEachTime) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string one = recording("guit_em9", "-b 16", "one.wav", "gain -6");
    const std::string two = recording("loop_tabla", "-b 16", "two.wav", "gain -6 trim 0 1");
    const std::string mix = folder() + "mix.wav";
    Planar sum = readAll(one);
    const Planar other = readAll(two);
    for (std::size_t c = 0; c < 2; ++c)
        for (std::size_t i = 0; i < other[c].size(); ++i)
            sum[c].at(i) += other[c][i];
    for (const std::string bits : {"float", "24", "16"}) {
        const std::string command = "--bounce " + mix + " --bits " + bits + " " + one + " " + two;
        const Outcome run = console(command);
        EXPECT_EQ(run.status, 0) << run.log;
        EXPECT_EQ(readAll(mix), sum) << bits;  // sums of two 16-bit samples fit all three
        const std::string bytes = contents(mix);
        std::this_thread::sleep_for(std::chrono::milliseconds(bits == "16" ? 1100 : 0));
        EXPECT_EQ(console(command + " --report " + folder() + "mix.txt").status, 0);
        EXPECT_TRUE(contents(mix) == bytes) << bits;
        EXPECT_EQ(number(contents(folder() + "mix.txt"), two, "length"), 1.0);
    }
    for (const auto& [arguments, reason] :
         {std::pair{"--bounce " + two + " " + one, "no mix of this program"},
          {"--bounce " + one + " " + one, "one of the recordings"},
          {"--bounce " + folder() + "mix.aiff " + one, "ends in .wav"},
          {"--bounce /nowhere/mix.wav " + one, "cannot be written"}}) {
        const Outcome run = console(arguments);
        EXPECT_NE(run.status, 0);
        EXPECT_THAT(run.log, HasSubstr(reason));
        EXPECT_EQ(std::count(run.log.begin(), run.log.end(), '\n'), 1) << run.log;
    }
    const Outcome loud = console("--bounce " + mix + " --bits 16 " + one + " " + one + " " + one);
    EXPECT_THAT(loud.log, ContainsRegex("dB too loud"));
}

TEST(Options, NonsenseEndsWithStatus2AndHelpWith0) {
    for (const char* arguments :
         {"", "--nonsense x", "--report", "--device= x", "--headless=1 x", "--bounce x.wav",
          "--bits 8 x", "--rate 10 x", "--block 1e3 x", "--theme dark x", "--bits 24 x"}) {
        const Outcome run = console(arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_THAT(run.log, ContainsRegex("^veltra-console: .*--help\n$")) << arguments;
    }
    const Outcome help = console("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("full scale"));
    std::string error;
    const std::array<const char*, 5> arguments{"a", "--device=null", "--", "--help", "-"};
    const auto options = parseOptions(arguments, error);
    ASSERT_TRUE(options.has_value()) << error;
    EXPECT_EQ(options->files, (std::vector<std::string>{"a", "--help", "-"}));
    EXPECT_EQ(options->device.id, "null");
}

TEST(Options, WhatIsAnsweredInsteadOfPlaying) {
    using Row = std::array<const char*, 3>;
    for (const auto& [arguments, output, log] :
         {Row{"--version", "^Veltra Console [0-9.]+\n[^\n]+\n$", "^$"},
          Row{"-V", "^Veltra Console [0-9.]+\n[^\n]+\n$", "^$"}, Row{"-h", "^Usage: ", "^$"},
          Row{"--machine", "Veltra Console.*\n(.*\n)*memory", "^$"},
          Row{"--demo-exception", "^$", "DemonstrationException: raised on purpose"},
          Row{"--demo-exception", "^$", "raiseOnPurpose"}}) {
        const Outcome run = console(arguments);  // nobody can be asked
        EXPECT_EQ(run.status, 0) << arguments;
        EXPECT_THAT(run.output, ContainsRegex(output));
        EXPECT_THAT(run.log, ContainsRegex(log));
        EXPECT_THAT(console("--help").output, HasSubstr(arguments));
    }
}

TEST(Options, ProgressIsToldOnlyToThoseWhoAsk) {
    const std::string path = synthetic("told.wav", 44100, "1 pinknoise");
    EXPECT_THAT(console("--headless " + path).log, IsEmpty());
    EXPECT_THAT(console("--headless --progress " + path).log, HasSubstr("told.wav 100 %\n"));
    const std::vector<ProgressLine> lines{{"a.wav", 0.4}, {"b", -1.0}};
    EXPECT_EQ(progressText(lines, 100), "a.wav 40 %  b");
    EXPECT_EQ(progressText(lines, 7), "a.wav 4");
    EXPECT_EQ(progressText({{"quité.wav"}}, 5), "quité");
    ::testing::internal::CaptureStderr();
    {
        const TerminalProgress progress;
        const VLString* const title = VLStringCreateWithUtf8("x.wav", 5);  // of both
        VLProgressIndicator* const files[] = {VLAcquireProgressIndicator(title, nullptr),
                                              VLAcquireProgressIndicator(title, nullptr)};
        for (int i = 0; i < 4; ++i)
            VLSetProgressIndicatorValue(files[i % 2], i % 2 == 0 ? 0.1 : 0.4);
        for (VLProgressIndicator* const file : files)
            VLReleaseProgressIndicator(file);
        VLStringRelease(title);
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x.wav 10 %\nx.wav 40 %\n");
}

TEST(Interruption, EndsTheProcessTheSecondTimeWhicheverSignalItIs) {
    const auto interruptTwice = [] {
        listenForInterruption();
        ::raise(SIGINT);
        std::fputs(isInterrupted() ? "heard" : "not heard", stderr);
        ::raise(SIGTERM);
        ::_exit(0);
    };
    EXPECT_EXIT(interruptTwice(), KilledBySignal(SIGTERM), "^heard$");
}

TEST(StatusLines, TellLevelsInDecibelsAndFitTheTerminal) {
    const std::vector<StripLine> strips{{"a.wav", {"L", "R"}, {0.5F, 0.1F}, 0.5F, 0},
                                        {"quité-a-long-name.wav", {"M"}, {0.0F}, 2.0F, 3},
                                        {"six", {"L", "R", "LFE"}, {0.0F, 0.0F, 1.0F}, 1.0F, 0}};
    EXPECT_THAT(statusLines(3.4, 10.7, strips, {60, 24, false}),
                ElementsAre("0:03.4 / 0:10.7", "a.wav             -6.0 dB  L ######. R ####...",
                            "quité-a..me.wav    6.0 dB  M ....... clipped gaps: 3",
                            "six                0.0 dB  LFE  #######"));
    EXPECT_THAT(statusLines(0.0, 0.0, strips, {20, 4, false}),
                ElementsAre("0:00.0", "a.wav      -6.0 dB", "and 2 more   6.0 dB"));
    const std::vector<std::string> colored = statusLines(0.0, 0.0, strips, {60, 24, true});
    EXPECT_THAT(colored[2], HasSubstr("\033[31m clipped"));
    EXPECT_THAT(colored[3], HasSubstr("\033[32m#####\033[33m##\033[0m"));
    EXPECT_THAT(statusLines(0.0, 0.0, strips, {90, 24, true})[3], HasSubstr("#\033[31m#"));
}

TEST(Requests, TheExceptionLetsTheUserStopTheProgram) {
    static bool isStopped = false;
    const Terminator before = installTerminator([]() noexcept { isStopped = true; });
    veltra::testing::FakeUser user;
    user.answer = AlertAnswer::Default;  // stop
    demonstrateException();
    installTerminator(before);
    EXPECT_THAT(user.text, HasSubstr("raised on purpose"));
    EXPECT_TRUE(isStopped);
}

}  // namespace
}  // namespace veltra::console
