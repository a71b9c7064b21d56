// SPDX-License-Identifier: MIT
// The program veltra-alert by its command line.
#include "veltra/base/testing/prelude.h"

#include <QImage>
#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

namespace veltra::testing {
namespace {

// The exit status; what it prints lands in `output`. `asker` stands for the process that asks.
int run(const std::string& arguments, std::string& output, const std::string& asker = "true",
        const std::string& platform = "offscreen") {
    const std::string command = asker + " | QT_QPA_PLATFORM=" + platform + " " VELTRA_ALERT " " +
                                arguments + " 2>/dev/null";
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::array<char, 256> text{};
    output.assign(text.data(), std::fread(text.data(), 1, text.size(), pipe));
    return WEXITSTATUS(::pclose(pipe));
}

TEST(AlertHelper, AsksNobodyWhereNobodySeesIt) {
    std::string output;
    for (const char* const platform : {"offscreen", "minimal"})
        EXPECT_EQ(run("--title=t --message=m --timeout=300", output, "sleep 1", platform), 70)
            << platform;
    EXPECT_EQ(output, "");
}

TEST(AlertHelper, ShowsWhatItsArgumentsSay) {
    const std::string path = std::filesystem::temp_directory_path() /
                             ("veltra-alert-" + std::to_string(::getpid()) + ".png");
    std::vector<QImage> pictures;
    // Each differs from all before: a text that begins with a hyphen, a text that is not there.
    for (const char* arguments :
         {"--header=h --message=m", "--header=h --message=-m", "--header=h", "--header=-",
          "--header=h --message=m --dark", "--header=h --message=m --critical",
          "--header=h --message=m --default=Go", "--header=h --message=m --other=o",
          "--header=h --message=m --alternate=longer"}) {
        std::string output;
        EXPECT_EQ(run(std::string(arguments) + " --picture=" + path, output), 0) << arguments;
        const QImage picture(QString::fromStdString(path));
        EXPECT_FALSE(picture.isNull()) << arguments;
        EXPECT_EQ(std::count(pictures.begin(), pictures.end(), picture), 0) << arguments;
        pictures.push_back(picture);
        std::filesystem::remove(path);
    }
    std::string output;
    EXPECT_EQ(run("--header=h --picture=/no/such/folder/x.png", output), 70);
}

}  // namespace
}  // namespace veltra::testing
