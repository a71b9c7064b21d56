// SPDX-License-Identifier: MIT
// Brings a sample kit up to date: merges a new version into the user's, tells what was left out,
// and makes a file for the next take.
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"
#include "veltra/Source/Extensions/QKNSFileManager_Merge.h"
#include "veltra/Source/Extensions/QKNSString_Paths.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

class Report : public veltra::MergeHandler {
public:
    veltra::MergeAnswer couldNotMerge(const veltra::MergeProblem& problem) noexcept override {
        std::printf("left out: %.*s\n", static_cast<int>(problem.sourcePath.size()),
                    problem.sourcePath.data());
        ++leftOut;
        return veltra::MergeAnswer::GoOn;
    }

    int leftOut = 0;
};

void write(const std::string& path, const char* text) {
    std::ofstream(path) << text;
}

std::string read(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool bringUpToDate(const std::string& folder) {
    const std::string kit = folder + "/Kit";
    const std::string update = folder + "/Update";
    if (!veltra::makeSureDirectoryExistsAtPath(kit + "/Snares") ||
        !veltra::makeSureDirectoryExistsAtPath(update + "/Snares"))
        return false;
    write(kit + "/kick.wav", "old kick");
    write(kit + "/Snares/mine.wav", "my own snare");
    write(kit + "/notes", "a file of the user's");
    write(update + "/kick.wav", "new kick");
    write(update + "/Snares/rim.wav", "new rim");
    veltra::makeSureDirectoryExistsAtPath(update +
                                          "/notes");  // a folder, where the user has a file

    Report report;
    const bool isComplete = veltra::mergePath(update, kit, true, &report);
    return !isComplete && report.leftOut == 1 && read(kit + "/kick.wav") == "new kick" &&
           read(kit + "/Snares/mine.wav") == "my own snare" &&
           read(kit + "/notes") == "a file of the user's";
}

bool makeTakes(const std::string& folder) {
    const auto first = veltra::createUniqueFile(folder, "Take", "wav");
    const auto second = veltra::createUniqueFile(folder, "Take", "wav");
    if (!first || !second) return false;
    std::printf("recording to %s, then %s\n", first->c_str(), second->c_str());
    return *second == "Take 2.wav";
}

bool listKit(const std::string& folder) {
    const auto paths = veltra::contentPathsAtPath(folder, true);
    if (!paths) return false;
    for (const std::string& path : *paths)
        if (veltra::isFileVisible(path)) std::printf("%s\n", path.substr(folder.size()).c_str());
    return !paths->empty();
}

}  // namespace

int main() {
    std::error_code error;
    const std::string temporary = std::filesystem::temp_directory_path(error).string();
    const auto name = veltra::createUniqueFile(temporary, "veltra file tools", "");
    if (!name) return 1;
    const std::string folder = temporary + "/" + *name + ".folder";
    const bool isRight = bringUpToDate(folder) && makeTakes(folder + "/Kit") && listKit(folder);
    std::filesystem::remove_all(folder, error);
    std::filesystem::remove(temporary + "/" + *name, error);
    return isRight ? 0 : 1;
}
