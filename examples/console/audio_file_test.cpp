// SPDX-License-Identifier: MIT
#include "audio_file.h"

#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra::console {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A square wave at full scale, in a format of libsndfile.
std::string written(const std::string& file, int format) {
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = format;
    const SoundHandle handle(sf_open((folder() + file).c_str(), SFM_WRITE, &info));
    sf_command(handle.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    std::vector<float> samples(16'000, -1.0F);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = i % 800 < 400 ? 1.0F : -1.0F;
    EXPECT_EQ(sf_write_float(handle.get(), samples.data(), 16'000), 16'000) << format;
    return folder() + file;
}

TEST(AudioFile, EveryUncompressedVariantGivesTheSamplesOfTheRecording) {
    SKIP_WITHOUT_RECORDINGS();
    for (const char* name : {"loop_tabla", "guit_em9"}) {
        const Planar original = readAll(kSamples + name + ".flac");  // 16 bits, decoded
        for (const Variant& variant : kVariants) {
            SCOPED_TRACE(std::string(name) + " " + variant.file);
            auto file = mustOpen(recording(name, variant.format, variant.file));
            EXPECT_EQ(file->format().encoding, variant.encoding);
            EXPECT_EQ(file->format().byteOrder, variant.order);
            const Planar samples = readAll(*file);
            EXPECT_THAT(file->problem(), IsEmpty());
            EXPECT_EQ(file->framesRead(), file->format().frames);
            if (file->format().bits >= 16) {
                EXPECT_EQ(samples, original);  // to the last bit
                continue;
            }
            ASSERT_EQ(samples[0].size(), original[0].size());
            for (std::size_t i = 0; i < samples[0].size(); ++i) {
                ASSERT_LE(std::fabs(samples[0][i] - original[0][i]), 1.0F / 256) << i;
            }
        }
    }
}

TEST(AudioFile, WhatCannotBeReadIsRefusedWithTheReason) {
    writeFile(folder() + "empty.wav", "");
    writeFile(folder() + "text.wav", "Dear diary, today I recorded nothing at all.\n");
    writeFile(folder() + "cut.wav", std::string_view("RIFF\x24\0\0\0WAVEfmt \x10\0", 18));
    ASSERT_EQ(shell("mkfifo " + folder() + "pipe"), 0);
    const std::array<std::array<const char*, 2>, 6> cases{{{"missing.wav", "no such file"},
                                                           {"empty.wav", "empty"},
                                                           {"text.wav", "not an audio file"},
                                                           {"cut.wav", "damaged"},
                                                           {"pipe", "not a regular file"},
                                                           {".", "folder"}}};
    for (const auto& [name, reason] : cases) {
        std::string problem;
        EXPECT_EQ(AudioFile::open(folder() + name, problem), nullptr) << name;
        EXPECT_THAT(problem, HasSubstr(reason)) << name;
        EXPECT_THAT(problem, HasSubstr("; ")) << name << ": says what to do";
    }
}

TEST(AudioFile, ATruncatedFileIsReadAsFarAsItGoesAndSaysSo) {
    SKIP_WITHOUT_RECORDINGS();
    const Planar original = readAll(kSamples + "loop_tabla.flac");
    for (const char* name :
         {"whole.wav", "whole.aiff", "whole.aifc", "whole.au", "whole.flac", "whole.w64"}) {
        const std::string path =
            cutShort(recording("loop_tabla", "-b 16", name), 0.6, std::string("cut.") + name);
        auto file = mustOpen(path);
        const Planar samples = readAll(*file);
        EXPECT_THAT(file->problem(), HasSubstr("breaks off")) << name;
        ASSERT_GT(samples[0].size(), original[0].size() / 3) << name;
        ASSERT_LT(samples[0].size(), original[0].size()) << name;
        EXPECT_TRUE(std::equal(samples[1].begin(), samples[1].end(), original[1].begin())) << name;
    }
    const std::string whole = recording("loop_tabla", "", "whole.ogg");
    const std::string pages = contents(whole);
    writeFile(folder() + "pages.ogg", pages.substr(0, pages.rfind("OggS")));
    for (const auto& [path, told] : {std::pair{whole, ""},
                                     {cutShort(whole, 0.6, "cut.ogg"), "end mark"},
                                     {folder() + "pages.ogg", "end mark"}}) {
        auto vorbis = mustOpen(path);
        readAll(*vorbis);
        EXPECT_THAT(vorbis->problem(), HasSubstr(told)) << path;
        EXPECT_EQ(vorbis->problem().empty(), path == whole);
    }
    // What a streaming writer leaves is not called a loss, nor passed over in silence.
    std::string open = contents(recording("loop_tabla", "-b 16", "open.wav"));
    writeFile(folder() + "open.wav", open.replace(open.find("data") + 4, 4, "\xF0\xFF\xFF\xFF"));
    EXPECT_TRUE(mustOpen(folder() + "open.wav")->format().openLength);
    EXPECT_EQ(readAll(folder() + "open.wav"), original);
    std::string flac = contents(recording("loop_tabla", "", "open.flac"));
    flac[21] &= '\xF0';  // and four more bytes: the number of samples
    writeFile(folder() + "open.flac", flac.replace(22, 4, 4, '\0'));
    auto piped = mustOpen(folder() + "open.flac");
    EXPECT_TRUE(piped->format().openLength);
    EXPECT_EQ(readAll(*piped), original);
    EXPECT_THAT(piped->problem(), IsEmpty());
    const std::string large = written("large.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16);
    EXPECT_THAT(mustOpen(large)->problem(), IsEmpty());
    EXPECT_THAT(mustOpen(cutShort(large, 0.6, "cut.rf64"))->problem(), HasSubstr("breaks off"));
}

TEST(AudioFile, KnowsTheLargestValueOfItsEncoding) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_ULAW,
                             SF_FORMAT_WAV | SF_FORMAT_ALAW, SF_FORMAT_WAV | SF_FORMAT_GSM610,
                             SF_FORMAT_AU | SF_FORMAT_G721_32, SF_FORMAT_XI | SF_FORMAT_DPCM_8}) {
        auto file = mustOpen(written("square", format));
        const Planar samples = readAll(*file);
        EXPECT_EQ(*std::max_element(samples[0].begin(), samples[0].end()), file->format().fullScale)
            << format;
    }
}

TEST(AudioFile, IsReadFromAnyFrameOnAsIfItHadBeenReadUpToThere) {
    SKIP_WITHOUT_RECORDINGS();
    for (const char* name : {"at.wav", "at.aiff", "at.flac", "at.ogg", "at.au", "at.gsm"}) {
        SCOPED_TRACE(name);
        const std::string path =
            recording("loop_tabla", std::string(name) == "at.gsm" ? "-r 8000 -c 1" : "", name);
        auto file = mustOpen(path);
        const Planar all = readAll(*file);
        const std::size_t frames = all[0].size();
        for (const std::size_t place :
             {std::size_t{0}, std::size_t{1}, frames / 2 + 1, std::size_t{20'001}, frames - 9000}) {
            ASSERT_TRUE(file->seek(place)) << place;
            const Planar rest = readAll(*file);
            ASSERT_EQ(rest[0].size(), frames - place);
            EXPECT_TRUE(std::equal(rest[0].begin(), rest[0].end(),
                                   all[0].begin() + static_cast<std::ptrdiff_t>(place)))
                << place;
        }
        EXPECT_TRUE(file->seek(7));
        EXPECT_FALSE(file->seek(frames + 1));
        EXPECT_TRUE(file->seek(7));
        EXPECT_EQ(file->framesRead(), frames);
        EXPECT_THAT(file->problem(), IsEmpty());
    }
}

}  // namespace
}  // namespace veltra::console
