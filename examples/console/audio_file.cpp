// SPDX-License-Identifier: MIT
#include "audio_file.h"

#include "text.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace veltra::console {

namespace {

// What the file system alone can say against a path; empty when it looks like a file with bytes.
// Asked first, because opening a pipe would wait for its writer.
std::string objection(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        return "there is no such file; check its name";
    }
    if (error) return error.message() + "; check the file's folder and permissions";
    if (fs::is_directory(status)) return "this is a folder; name the audio files in it";
    if (fs::is_fifo(status))
        return "a pipe, not a regular file; save what it carries in a file and name that";
    if (!fs::is_regular_file(status)) return "not a regular file; copy it into one";
    if (fs::file_size(path, error) == 0 && !error)
        return "the file is empty; record or copy it again";
    return {};
}

// libsndfile's own words without their frame, as in "System error : Permission denied.". Empty when
// they are about the library, or wrong: what an MP3 decoder has found has no words.
std::string wordsOf(std::string_view libraryText) {
    if (libraryText.find("SF_INFO struct incomplete") != std::string_view::npos)
        return "no channels or no sample rate";
    if (libraryText.find("nternal error") != std::string_view::npos ||
        libraryText.starts_with("File does not exist"))
        return {};
    for (const std::string_view frame : {"System error : ", "Error : "}) {
        if (libraryText.starts_with(frame)) libraryText.remove_prefix(frame.size());
    }
    while (libraryText.ends_with('.'))
        libraryText.remove_suffix(1);
    return std::string(libraryText);
}

std::string refusal(int error, const char* libraryText) {
    const std::string words = wordsOf(libraryText);
    if (error == SF_ERR_SYSTEM) return words + "; check the file's permissions";
    if (error == SF_ERR_UNRECOGNISED_FORMAT) {
        return "not an audio file of a known format; convert it to WAV, AIFF or FLAC";
    }
    return "a damaged or unusual audio file" + (words.empty() ? "" : " (" + words + ")") +
           "; copy or convert it again";
}

std::unique_ptr<FrameReader> makeReader(SoundHandle handle, const FileFormat& format) {
    return format.layout.converterFormat != 0 ? makePcmReader(std::move(handle), format)
                                              : makeDecodedReader(std::move(handle), format);
}

}  // namespace

std::unique_ptr<AudioFile> AudioFile::open(const std::string& path, std::string& problem) {
    std::string reason = objection(path);
    SF_INFO info{};
    SoundHandle handle;
    if (reason.empty()) {
        handle.reset(sf_open(path.c_str(), SFM_READ, &info));
        if (!handle) {
            reason = refusal(sf_error(nullptr), sf_strerror(nullptr));
        } else if (info.channels < 1 || info.samplerate < 1) {
            reason = "a damaged audio file (no channels or no sample rate); copy it again";
        }
    }
    if (!reason.empty()) {
        problem = printable(reason);
        return nullptr;
    }

    FileFormat format = describe(handle.get(), info, path);
    std::unique_ptr<FrameReader> reader = makeReader(std::move(handle), format);
    return std::make_unique<AudioFile>(path, std::move(format), std::move(reader));
}

AudioFile::AudioFile(std::string path, FileFormat format, std::unique_ptr<FrameReader> reader)
    : m_path(std::move(path)), m_format(std::move(format)), m_reader(std::move(reader)) {}

std::size_t AudioFile::read(float* const* channels, std::size_t frames) {
    if (m_ended) return 0;
    const std::size_t got = m_reader->read(channels, frames);
    m_position += got;
    m_framesRead = std::max(m_framesRead, m_position);
    m_ended = got < frames;
    m_sawEnd = m_sawEnd || m_ended;
    return got;
}

bool AudioFile::seek(std::uint64_t frame) {
    if (frame == m_position && !m_ended) return true;
    m_ended = false;
    if (!m_format.lengthUnknown && frame >= m_format.frames) {
        m_ended = true;
    } else if (m_reader->seek(frame)) {
        m_position = frame;
    } else {
        m_ended = !readUpTo(frame);
    }
    return !m_ended;
}

// From the beginning, in a file that is opened again: a decoder that has lost its way stays so.
bool AudioFile::readUpTo(std::uint64_t frame) {
    SF_INFO info{};
    SoundHandle handle(sf_open(m_path.c_str(), SFM_READ, &info));
    if (!handle || info.channels != m_format.channels) return false;
    m_reader = makeReader(std::move(handle), m_format);
    m_position = 0;
    const auto channels = static_cast<std::size_t>(m_format.channels);
    std::vector<float> samples(channels * kChunkFrames);
    std::vector<float*> places;
    for (std::size_t channel = 0; channel < channels; ++channel)
        places.push_back(samples.data() + channel * kChunkFrames);
    while (m_position < frame) {
        const auto wanted = std::min<std::uint64_t>(frame - m_position, kChunkFrames);
        const std::size_t got = m_reader->read(places.data(), static_cast<std::size_t>(wanted));
        m_position += got;
        if (got < wanted) return false;
    }
    return true;
}

std::string AudioFile::problem() const {
    std::string reason;
    if (m_format.missingBytes > 0) {
        reason = std::to_string(m_format.missingBytes) + " bytes of its samples are missing";
    } else if (m_sawEnd && m_format.endIsMissing) {
        reason = "its end mark is missing";
    } else if (m_sawEnd && m_framesRead < m_format.frames) {
        reason = "only " + std::to_string(m_framesRead) + " of " + std::to_string(m_format.frames) +
                 " frames can be read";
    }
    if (reason.empty()) return {};
    return "the file breaks off, " + reason +
           "; what is there is played, copy the rest from its source";
}

}  // namespace veltra::console
