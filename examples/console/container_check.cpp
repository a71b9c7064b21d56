// SPDX-License-Identifier: MIT
#include "container_check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <string_view>

namespace veltra::console {

namespace {

constexpr std::uint32_t kStreamedSize = 0x7FFF0000;  // sizes from here on mean "until it ends"

// An Ogg page: a head, a table with the sizes of its parts, the parts.
constexpr std::size_t kPageHead = 27;
constexpr std::size_t kLargestPage = kPageHead + 255 + std::size_t{255} * 255;
constexpr std::size_t kFlagsAt = 5;
constexpr unsigned kEndsStream = 4;

class HeaderFile {
public:
    explicit HeaderFile(const std::string& path) : m_stream(path, std::ios::binary) {
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
    std::ifstream m_stream;
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

void compareSizes(std::uint32_t announced, std::uint64_t start, std::uint64_t fileSize,
                  ContainerCheck& result) {
    const std::uint64_t there = fileSize > start ? fileSize - start : 0;
    const bool isShort = announced > there;
    result.openLength = announced == 0 ? there > 0 : isShort && announced >= kStreamedSize;
    if (isShort && !result.openLength) result.missingBytes = announced - there;
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
    HeaderFile file(path);
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
    if (kind != "RIFF" && kind != "RIFX" && kind != "FORM") return {};

    const bool bigEndian = kind != "RIFF";
    result.compressedAiff = std::string_view(&head[8], 4) == "AIFC";
    std::array<char, 8> chunk{};
    for (std::uint64_t position = head.size(); file.read(position, chunk);) {
        const std::string_view name(chunk.data(), 4);
        const std::uint32_t size = number(&chunk[4], bigEndian);
        position += chunk.size();
        if (name == "data" || name == "SSND") {
            compareSizes(size, position, file.size(), result);
            break;
        }
        position += std::uint64_t{size} + size % 2;  // chunks are padded to an even length
    }
    return result;
}

}  // namespace veltra::console
