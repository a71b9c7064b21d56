// SPDX-License-Identifier: MIT
#include "container_check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <string_view>

namespace veltra::console {

namespace {

// Sizes from here on mean "until it ends".
constexpr std::uint64_t kStreamedSize = 0x7FFF0000;
constexpr std::uint64_t kStreamedSize64 = std::uint64_t{1} << 63U;

constexpr std::uint32_t kIn64Bits = 0xFFFFFFFF;

// An Ogg page: a head, a table with the sizes of its parts, the parts.
constexpr std::size_t kPageHead = 27;
constexpr std::size_t kLargestPage = kPageHead + 255 + std::size_t{255} * 255;
constexpr std::size_t kFlagsAt = 5;
constexpr unsigned kEndsStream = 4;

class HeaderFile {
public:
    explicit HeaderFile(std::istream& stream) : m_stream(stream) {
        m_stream.seekg(0, std::ios::end);
        if (m_stream) m_size = static_cast<std::uint64_t>(m_stream.tellg());
    }

    std::uint64_t size() const noexcept { return m_size; }

    // The bytes of a header that lies whole in the file.
    template <std::size_t count>
    bool read(std::uint64_t position, std::array<char, count>& bytes) {
        if (position > m_size || m_size - position < count) return false;
        m_stream.seekg(static_cast<std::streamoff>(position));
        return static_cast<bool>(m_stream.read(bytes.data(), count));
    }

    // The last bytes, `most` of them at most.
    std::string tail(std::uint64_t most) {
        std::string bytes(static_cast<std::size_t>(std::min(m_size, most)), '\0');
        m_stream.seekg(static_cast<std::streamoff>(m_size - bytes.size()));
        m_stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }

private:
    std::istream& m_stream;
    std::uint64_t m_size = 0;
};

std::uint32_t number(const char* bytes, bool bigEndian) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < 4; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[bigEndian ? i : 3 - i]);
        value = value << 8 | byte;
    }
    return value;
}

std::uint64_t number64(const char* bytes) {
    return std::uint64_t{number(bytes + 4, false)} << 32U | number(bytes, false);
}

void compareSizes(std::uint64_t announced, std::uint64_t start, std::uint64_t fileSize,
                  ContainerCheck& result, std::uint64_t streamedSize = kStreamedSize) {
    const std::uint64_t there = fileSize > start ? fileSize - start : 0;
    const bool isShort = announced > there;
    result.openLength = announced == 0 ? there > 0 : isShort && announced >= streamedSize;
    if (isShort && !result.openLength) result.missingBytes = announced - there;
}

// W64: 16 bytes name a chunk, beginning with what WAV calls it, and its size counts its head.
ContainerCheck checkW64(HeaderFile& file) {
    constexpr std::uint64_t kFileHead = 40;
    ContainerCheck result;
    std::array<char, 24> chunk{};
    for (std::uint64_t position = kFileHead; file.read(position, chunk);) {
        const std::uint64_t size = number64(&chunk[16]);
        const std::uint64_t content = size - std::min<std::uint64_t>(size, chunk.size());
        position += chunk.size();
        if (std::string_view(chunk.data(), 4) == "data") {
            compareSizes(content, position, file.size(), result, kStreamedSize64);
            break;
        }
        if (content > file.size()) break;
        position += (content + 7) / 8 * 8;
    }
    return result;
}

bool endsWithItsLastPage(const std::string& tail) {
    const auto byteAt = [&tail](std::size_t at) { return static_cast<unsigned char>(tail[at]); };
    const std::size_t page = tail.rfind(std::string_view("OggS\0", 5));
    if (page == std::string::npos || tail.size() - page < kPageHead) return false;
    const std::size_t sizes = page + kPageHead;
    const std::size_t parts = sizes + byteAt(sizes - 1);
    if (tail.size() < parts) return false;
    std::size_t end = parts;
    for (std::size_t at = sizes; at < parts; ++at)
        end += byteAt(at);
    return end <= tail.size() && (byteAt(page + kFlagsAt) & kEndsStream) != 0;
}

}  // namespace

ContainerCheck checkContainer(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return checkContainer(file);
}

ContainerCheck checkContainer(std::istream& stream) {
    HeaderFile file(stream);
    std::array<char, 12> head{};
    if (!file.read(0, head)) return {};
    const std::string_view kind(head.data(), 4);
    ContainerCheck result;
    if (kind == ".snd") {
        compareSizes(number(&head[8], true), number(&head[4], true), file.size(), result);
        return result;
    }
    if (kind == "OggS") {
        result.endIsMissing = !endsWithItsLastPage(file.tail(2 * kLargestPage));
        return result;
    }
    if (kind == "riff") return checkW64(file);
    const bool isLarge = kind == "RF64";
    if (kind != "RIFF" && kind != "RIFX" && kind != "FORM" && !isLarge) return {};

    const bool bigEndian = kind == "RIFX" || kind == "FORM";
    std::uint64_t largeSize = 0;  // of the samples, which the chunk "ds64" tells
    result.compressedAiff = std::string_view(&head[8], 4) == "AIFC";
    std::array<char, 8> chunk{};
    for (std::uint64_t position = head.size(); file.read(position, chunk);) {
        const std::string_view name(chunk.data(), 4);
        const std::uint32_t size = number(&chunk[4], bigEndian);
        position += chunk.size();
        std::array<char, 16> sizes{};
        if (isLarge && name == "ds64" && size >= sizes.size() && file.read(position, sizes))
            largeSize = number64(&sizes[8]);
        if (isLarge && name == "data" && size == kIn64Bits) {
            compareSizes(largeSize, position, file.size(), result, kStreamedSize64);
            break;
        }
        if (name == "data" || name == "SSND") {
            compareSizes(size, position, file.size(), result);
            break;
        }
        position += std::uint64_t{size} + size % 2;  // chunks are padded to an even length
    }
    return result;
}

}  // namespace veltra::console
