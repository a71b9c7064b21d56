// SPDX-License-Identifier: MIT
#include "mix_file.h"

#include "veltra/platform/application_facts.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace veltra::console {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kChannels = 2;
constexpr std::uint64_t kMost32 = std::numeric_limits<std::uint32_t>::max();

struct Kind {
    std::uint32_t tag;  // of a WAV file
    std::int32_t converterFormat;
    std::uint32_t bytes;  // a sample
};

Kind kindOf(MixFormat format) {
    constexpr std::uint32_t kIntegers = 1;
    constexpr std::uint32_t kFloats = 3;
    if (format == MixFormat::Float) return {kFloats, kSampleFloat32, 4};
    return format == MixFormat::Int16 ? Kind{kIntegers, kSampleInt16, 2}
                                      : Kind{kIntegers, kSampleInt24, 3};
}

std::string number(std::uint64_t value, std::size_t bytes) {
    std::string text;
    for (std::size_t byte = 0; byte < bytes; ++byte)
        text += static_cast<char>(static_cast<unsigned char>(value >> (8 * byte)));
    return text;
}

std::string chunk(const char* name, const std::string& content) {
    return name + number(content.size(), 4) + content;
}

// A link is followed, so that what it points to is replaced.
std::string placeOf(const std::string& path) {
    std::error_code error;
    const fs::path whole = fs::canonical(path, error);
    return error ? path : whole.string();
}

std::string refusal(const std::string& path, int error) {
    return path + ": the mix cannot be written (" + std::generic_category().message(error) +
           "); name another file after --bounce";
}

}  // namespace

MixFile::MixFile(const std::string& path, std::int32_t rate, MixFormat format)
    : m_path(placeOf(path)),
      m_temporary(m_path + ".new." + std::to_string(::getpid())),
      m_rate(rate),
      m_format(format) {}

std::unique_ptr<MixFile> MixFile::create(const std::string& path, std::int32_t rate,
                                         MixFormat format, std::string& problem) {
    std::unique_ptr<MixFile> mix(new MixFile(path, rate, format));
    mix->m_file = std::fopen(mix->m_temporary.c_str(), "wb");
    const std::string header = mix->header();
    if (mix->m_file == nullptr ||
        std::fwrite(header.data(), 1, header.size(), mix->m_file) != header.size()) {
        problem = refusal(path, errno);
        return nullptr;
    }
    return mix;
}

MixFile::~MixFile() {
    if (m_file == nullptr) return;
    std::fclose(m_file);
    std::error_code ignored;
    fs::remove(m_temporary, ignored);
}

// Equally long whatever the sizes are: the chunk that holds them in 64 bits is there in any case,
// and is skipped by readers when it is called junk.
std::string MixFile::header() const {
    const Kind kind = kindOf(m_format);
    const std::uint32_t frameBytes = kChannels * kind.bytes;
    const std::uint64_t dataBytes = m_frames * frameBytes;
    const std::string format =
        chunk("fmt ", number(kind.tag, 2) + number(kChannels, 2) +
                          number(static_cast<std::uint64_t>(m_rate), 4) +
                          number(static_cast<std::uint64_t>(m_rate) * frameBytes, 4) +
                          number(frameBytes, 2) + number(std::uint64_t{8} * kind.bytes, 2));
    const std::string facts = chunk("fact", number(std::min(m_frames, kMost32), 4));
    std::string writer = applicationName() + '\0';
    if (writer.size() % 2 != 0) writer += '\0';
    const std::string list = chunk("LIST", "INFO" + chunk("ISFT", writer));
    constexpr std::uint64_t kBeforeFormat = 4 + 8 + 28;  // "WAVE" and the chunk with the sizes
    constexpr std::uint64_t kDataHead = 8;
    const std::uint64_t wholeBytes =
        kBeforeFormat + format.size() + facts.size() + list.size() + kDataHead + dataBytes;
    const bool isLarge = wholeBytes > kMost32;
    const std::string sizes =
        number(wholeBytes, 8) + number(dataBytes, 8) + number(m_frames, 8) + number(0, 4);
    return (isLarge ? "RF64" : "RIFF") + number(isLarge ? kMost32 : wholeBytes, 4) + "WAVE" +
           chunk(isLarge ? "ds64" : "JUNK", isLarge ? sizes : std::string(sizes.size(), '\0')) +
           format + facts + list + "data" + number(isLarge ? kMost32 : dataBytes, 4);
}

bool MixFile::write(const float* left, const float* right, std::size_t frames) {
    const Kind kind = kindOf(m_format);
    const bool isFloat = m_format == MixFormat::Float;
    m_bytes.resize(frames * kChannels * kind.bytes);
    // Swapped integers are little-endian; floats are this machine's.
    GetConvertFloatToN(kind.converterFormat, !isFloat)(m_bytes.data(), left, frames, right);
    if (isFloat && std::endian::native == std::endian::big)
        PSwapLong(m_bytes.data(), static_cast<std::uint32_t>(frames * kChannels));
    errno = 0;
    if (std::fwrite(m_bytes.data(), 1, m_bytes.size(), m_file) != m_bytes.size()) fail(errno);
    m_frames += frames;
    return m_error == 0;
}

void MixFile::fail(int error) {
    if (m_error == 0) m_error = error != 0 ? error : EIO;
}

std::string MixFile::finish() {
    const std::string complete = header();
    errno = 0;
    if (std::fseek(m_file, 0, SEEK_SET) != 0 ||
        std::fwrite(complete.data(), 1, complete.size(), m_file) != complete.size()) {
        fail(errno);
    }
    errno = 0;
    if (std::fclose(std::exchange(m_file, nullptr)) != 0) fail(errno);
    if (m_error == 0 && std::rename(m_temporary.c_str(), m_path.c_str()) != 0) fail(errno);
    if (m_error == 0) return {};
    std::error_code ignored;
    fs::remove(m_temporary, ignored);
    return refusal(m_path, m_error);
}

}  // namespace veltra::console
