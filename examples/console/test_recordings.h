// SPDX-License-Identifier: MIT
// Audio for the tests, made by sox from two recordings of the Debian package sonic-pi-samples.
#pragma once

#include "audio_file.h"
#include "mix_file.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>

namespace veltra::console::testing {

inline const std::string kSamples = "/usr/share/sonic-pi/samples/";

#define SKIP_WITHOUT_RECORDINGS()                                             \
    if (!std::filesystem::exists(kSamples + "loop_tabla.flac")) {             \
        GTEST_SKIP() << "the package sonic-pi-samples is not installed here"; \
    }

// A folder of this process's own, gone at its end.
inline const std::string& folder() {
    struct Folder {
        std::string path =
            std::filesystem::temp_directory_path() / ("console-" + std::string(6, 'X'));
        Folder() { path = std::string(::mkdtemp(path.data())) + "/"; }
        ~Folder() { std::filesystem::remove_all(path); }
    };
    static const Folder folder;
    return folder.path;
}

// Answers the exit status.
inline int shell(const std::string& command) {
    const int status = std::system(command.c_str());  // NOLINT(concurrency-mt-unsafe): one thread
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The recording as sox writes it with `format` under the name `file`; answers its path.
inline std::string recording(const std::string& name, const std::string& format,
                             const std::string& file, const std::string& effects = "") {
    std::string path = folder() + file;
    const std::string source = kSamples + name + ".flac ";
    EXPECT_EQ(shell("sox -D -V1 " + source + format + " " + path + " " + effects), 0);
    return path;
}

// What sox synthesises, one channel of floats unless `effects` make more of it; answers its path.
inline std::string synthetic(const std::string& file, int rate, const std::string& effects) {
    const std::string format = " -c 1 -n -e float -b 32 " + folder() + file + " synth ";
    EXPECT_EQ(shell("sox -V1 -r " + std::to_string(rate) + format + effects), 0);
    return folder() + file;
}

// Six voices of the Debian package alsa-utils, each saying its place, one after the other: two
// seconds each, in the order of WAV, noise in place of the LFE. Empty without the package.
inline std::string surroundVoices(const std::string& file) {
    const std::string voices = "/usr/share/sounds/alsa/";
    if (!std::filesystem::exists(voices + "Noise.wav")) return {};
    std::string inputs;
    for (const char* voice :
         {"Front_Left", "Front_Right", "Front_Center", "Noise", "Rear_Left", "Rear_Right"}) {
        inputs += voices + voice + ".wav ";
    }
    EXPECT_EQ(shell("sox -V1 -M " + inputs + folder() + file + " delay 0 2 4 6 8 10"), 0);
    return folder() + file;
}

// A stereo file whose left samples tell which frame they are of; right ones are their negatives.
inline float countAt(std::size_t frame) {
    return static_cast<float>(frame + 1) / 65536.0F;
}
inline std::string counting(const std::string& file, std::size_t frames) {
    std::string problem;
    const auto mix = MixFile::create(folder() + file, 44100, MixFormat::Float, problem);
    std::vector<float> left, right;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        left.push_back(countAt(frame));
        right.push_back(-left.back());
    }
    EXPECT_TRUE(mix->write(left.data(), right.data(), frames));
    EXPECT_EQ(mix->finish(), "");
    return folder() + file;
}

inline std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Forms of one recording; only those of 8 bits lose something of 16.
struct Variant {
    const char* file;
    const char* format;
    const char* encoding;
    ByteOrder order;
};
inline constexpr std::array<Variant, 17> kVariants{{
    {"8.wav", "-b 8", "8-bit unsigned integer", ByteOrder::None},
    {"8.aiff", "-b 8", "8-bit signed integer", ByteOrder::None},
    {"16.wav", "-b 16", "16-bit integer", ByteOrder::Little},
    {"16be.wav", "-B -b 16", "16-bit integer", ByteOrder::Big},
    {"16.aiff", "-b 16", "16-bit integer", ByteOrder::Big},
    {"24.wav", "-b 24", "24-bit integer", ByteOrder::Little},
    {"24.aiff", "-b 24", "24-bit integer", ByteOrder::Big},
    {"32.wav", "-b 32", "32-bit integer", ByteOrder::Little},
    {"32.aiff", "-b 32", "32-bit integer", ByteOrder::Big},
    {"float.wav", "-e float -b 32", "32-bit float", ByteOrder::Little},
    {"float.aifc", "-e float -b 32", "32-bit float", ByteOrder::Big},
    {"double.wav", "-e float -b 64", "64-bit float", ByteOrder::Little},
    {"double.aifc", "-e float -b 64", "64-bit float", ByteOrder::Big},
    {"16.au", "-b 16", "16-bit integer", ByteOrder::Big},
    {"16.voc", "-b 16", "16-bit integer", ByteOrder::Little},
    {"16.pvf", "-b 16", "16-bit integer", ByteOrder::Big},
    {"24.caf", "-b 24", "24-bit integer", ByteOrder::Big},
}};

// The first `share` of a file, under the name `file`.
inline std::string cutShort(const std::string& path, double share, const std::string& file) {
    const std::string whole = contents(path);
    const auto size = static_cast<std::size_t>(static_cast<double>(whole.size()) * share);
    writeFile(folder() + file, std::string_view(whole).substr(0, size));
    return folder() + file;
}

inline std::unique_ptr<AudioFile> mustOpen(const std::string& path) {
    std::string problem;
    auto file = AudioFile::open(path, problem);
    EXPECT_NE(file, nullptr) << path << ": " << problem;
    return file;
}

using Planar = std::vector<std::vector<float>>;

inline Planar readAll(AudioFile& file) {
    Planar all(static_cast<std::size_t>(file.format().channels));
    Planar chunk(all.size(), std::vector<float>(kChunkFrames));
    std::vector<float*> places;
    for (auto& channel : chunk)
        places.push_back(channel.data());
    for (std::size_t got = kChunkFrames; got == kChunkFrames;) {
        got = file.read(places.data(), kChunkFrames);
        for (std::size_t c = 0; c < all.size(); ++c) {
            all[c].insert(all[c].end(), places[c], places[c] + got);
        }
    }
    return all;
}

inline Planar readAll(const std::string& path) {
    return readAll(*mustOpen(path));
}

}  // namespace veltra::console::testing
