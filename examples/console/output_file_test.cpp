// SPDX-License-Identifier: MIT
#include "output_file.h"

#include "report.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/testing/child_process.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <sys/resource.h>

namespace veltra::console {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Output, NeverReplacesWhatThisProgramHasNotMade) {
    const std::string report = makeReport({{{"a b.wav", "there is no such file", {}}}});
    const std::string png = "\x89PNG\r\n\x1A\n....tEXtSoftware";
    const std::string ours = png + '\0' + applicationName();
    const struct {
        const char* name;
        std::optional<std::string> content;  // nothing: there is no file
        OutputKind kind;
        const char* problem;
    } rows[] = {
        {"new.txt", std::nullopt, OutputKind::Report, ""},
        {"empty.txt", "", OutputKind::Report, ""},
        {"old.txt", report, OutputKind::Report, ""},
        {"take.wav", "RIFF....WAVE", OutputKind::Report, "no report"},
        {"notes.txt", "some\n  notes", OutputKind::Report, "no report"},
        {"blank.txt", "\n  format      WAV", OutputKind::Report, "no report"},
        {"ours.png", ours, OutputKind::Report, "no report"},
        {"new.png", std::nullopt, OutputKind::Picture, ""},
        {"ours.png", ours, OutputKind::Picture, ""},
        {"theirs.png", png + '\0' + "Camera", OutputKind::Picture, "no picture"},
        {"named.png", report, OutputKind::Picture, "no picture"},
        {"new.jpg", std::nullopt, OutputKind::Picture, "ends in .png"},
        {"new.aiff", std::nullopt, OutputKind::Bounce, "ends in .wav"},
        {"take.wav", "RIFF....WAVEdataISFT" + applicationName(), OutputKind::Bounce, "no mix"},
        {"old.wav", "RIFF....WAVEISFT...." + applicationName(), OutputKind::Bounce, ""},
    };
    for (const auto& row : rows) {
        const std::string path = testing::folder() + row.name;
        if (row.content) testing::writeFile(path, *row.content);
        const std::string problem = whyNotWrite(path, row.kind);
        EXPECT_THAT(problem, *row.problem != '\0'
                                 ? ::testing::Matcher<std::string>(HasSubstr(row.problem))
                                 : IsEmpty())
            << row.name;
        if (row.kind != OutputKind::Report || *row.problem == '\0') continue;
        EXPECT_EQ(writeReport(report, path), problem);
        EXPECT_EQ(testing::contents(path), row.content) << row.name;
    }
}

TEST(Output, LeavesAloneWhatItCannotReadNow) {
#ifdef VELTRA_SANITIZED
    GTEST_SKIP() << "sanitizers need descriptors of their own";
#endif
    const std::string path = testing::folder() + "take.txt";
    testing::writeFile(path, "");
    EXPECT_TRUE(veltra::testing::holdsInChild([&path] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
        return !whyNotWrite(path, OutputKind::Report).empty();
    }));
}

TEST(Output, IsNoneOfTheRecordingsByAnyName) {
    const std::string take = testing::folder() + "take.wav";
    testing::writeFile(take, "");
    const std::string link = testing::folder() + "link.txt";
    std::filesystem::remove(link);
    std::filesystem::create_symlink(take, link);
    Options options;
    options.files = {take};
    for (const std::string& path : {take, link, testing::folder() + "./take.wav"}) {
        options.report = path;
        EXPECT_THAT(whyNotWrite(options), HasSubstr("one of the recordings")) << path;
    }
    options.report = "-";
    EXPECT_THAT(whyNotWrite(options), IsEmpty());
    options.report = "/dev/null";
    EXPECT_THAT(whyNotWrite(options), IsEmpty());
    options.bounce = testing::folder() + "device.wav";
    std::filesystem::create_symlink("/dev/null", options.bounce);
    EXPECT_THAT(whyNotWrite(options), HasSubstr("no regular file"));
}

}  // namespace
}  // namespace veltra::console
