// SPDX-License-Identifier: MIT
// The example host on five minutes of 24-bit stereo, as whole processes: start-up included, against
// a program that only reads the bytes, and beside sox.
#include "benchmarks/ratios.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::uint32_t kBytes = 300 * kRate * 6;

std::string audioFile;

// Noise at half of full scale in a plain WAV file.
void writeWav(const std::string& path) {
    const auto word = [](std::uint32_t value, std::size_t bytes) {
        std::string text;
        for (std::size_t byte = 0; byte < bytes; ++byte)
            text += static_cast<char>(static_cast<unsigned char>(value >> (8 * byte)));
        return text;
    };
    std::ofstream file(path, std::ios::binary);
    file << "RIFF" << word(36 + kBytes, 4) << "WAVEfmt " << word(16, 4) << word(1, 2) << word(2, 2)
         << word(kRate, 4) << word(kRate * 6, 4) << word(6, 2) << word(24, 2) << "data"
         << word(kBytes, 4);
    std::mt19937 random(1);
    std::vector<char> second(static_cast<std::size_t>(kRate) * 6);
    for (std::size_t byte = 0; byte < second.size(); ++byte)
        second[byte] = static_cast<char>(byte % 3 == 2 ? int(random() % 128) - 64 : int(random()));
    for (std::uint32_t done = 0; done < kBytes; done += static_cast<std::uint32_t>(second.size()))
        file.write(second.data(), static_cast<std::streamsize>(second.size()));
    if (!file.flush()) std::abort();
}

// Runs a program to its end, its output thrown away; false when it fails.
bool run(std::initializer_list<const char*> words) {
    std::vector<char*> arguments;
    for (const char* word : words)
        arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    int status = -1;
    const int error =
        ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

void time(benchmark::State& state, std::initializer_list<const char*> words) {
    for (auto _ : state)
        if (!run(words)) state.SkipWithError("the program failed");
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void console(benchmark::State& state) {
    time(state, {VELTRA_CONSOLE, "--headless", "--report", "-", audioFile.c_str()});
}
void readRaw(benchmark::State& state) {
    time(state, {READ_RAW, audioFile.c_str()});
}
void sox(benchmark::State& state) {
    time(state, {"sox", audioFile.c_str(), "-n", "stat"});
}
BENCHMARK(console)->UseRealTime();
BENCHMARK(readRaw)->UseRealTime();
BENCHMARK(sox)->UseRealTime();

constexpr Ratio kRatios[] = {
    {"console, 79 MB of 24-bit stereo : sf_read_raw", "console", "readRaw", 3.0},
    {"console : sox -n stat", "console", "sox", 0},
};

}  // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    audioFile = folder / ("veltra-bench-" + std::to_string(::getpid()) + ".wav");
    writeWav(audioFile);
    const int status = runRatios(argc, argv, kRatios);
    std::filesystem::remove(audioFile);
    return status;
}
