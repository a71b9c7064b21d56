// SPDX-License-Identifier: MIT
#include "document.h"

#include "veltra/processor/checksum.h"
#include "veltra/processor/sample_conversion.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace veltra::survivor {

namespace {

// A file's name, made without allocating.
class Path {
public:
    template <typename... Arguments>
    explicit Path(const char* format, Arguments... arguments) noexcept {
        std::snprintf(m_text.data(), m_text.size(), format, arguments...);
    }
    const char* text() const noexcept { return m_text.data(); }

private:
    std::array<char, 4096> m_text;
};

Path takePath(const std::string& folder, std::size_t number) noexcept {
    return Path("%s/take-%04zu.pcm", folder.c_str(), number);
}

Path contentsPath(const std::string& folder, const char* suffix) noexcept {
    return Path("%s/contents.txt%s", folder.c_str(), suffix);
}

// A line of the contents, the same for writing and for comparing.
using Line = std::array<char, 64>;
std::string_view takeLine(Line& line, std::size_t number, std::uint32_t checksum) noexcept {
    const int length = std::snprintf(line.data(), line.size(), "take %04zu %08x\n", number,
                                     static_cast<unsigned>(checksum));
    return {line.data(), static_cast<std::size_t>(length)};
}
std::string_view endLine(Line& line, std::size_t takes, std::uint32_t checksum) noexcept {
    const int length = std::snprintf(line.data(), line.size(), "end %zu %08x\n", takes,
                                     static_cast<unsigned>(checksum));
    return {line.data(), static_cast<std::size_t>(length)};
}

// A take as its file has it, a chunk at a time: visit(bytes, count) answers whether to go on.
template <typename Visit>
bool forEachChunk(const float* take, unsigned char* chunk, Visit visit) noexcept {
    const ConvertFloatToNProc convert = GetConvertFloatToN(kSampleInt24, false);
    for (std::size_t frame = 0; frame < Document::kTakeFrames; frame += Document::kChunkFrames) {
        convert(chunk, take + frame, Document::kChunkFrames, take + Document::kTakeFrames + frame);
        if (!visit(chunk, Document::kSavingBytes)) return false;
    }
    return true;
}

bool closeStored(std::FILE* file) noexcept {
    const bool isStored = std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0;
    return (std::fclose(file) == 0) && isStored;
}

std::string contentsOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Document::Document(std::string folder) : m_folder(std::move(folder)) {
    std::filesystem::create_directories(m_folder);
    m_takes.reserve(kMostTakes);
}

bool Document::add(Samples take) noexcept {
    const Block<unsigned char> chunk = takeBlock<unsigned char>(kSavingBytes);
    if (chunk == nullptr || m_takes.size() == kMostTakes) return false;
    std::uint32_t checksum = 0;
    forEachChunk(take.get(), chunk.get(), [&](const void* bytes, std::size_t count) {
        checksum = QKCRC32(checksum, bytes, count);
        return true;
    });
    m_takes.push_back({std::move(take), checksum, false});
    return true;
}

bool Document::save() noexcept {
    const Block<unsigned char> chunk = takeBlock<unsigned char>(kSavingBytes);
    if (chunk == nullptr) return false;
    for (std::size_t number = 0; number < m_takes.size(); ++number) {
        Take& take = m_takes[number];
        take.isStored = take.isStored || writeTake(take, number, chunk.get());
        if (!take.isStored) return false;
    }
    return writeContents();
}

bool Document::writeTake(const Take& take, std::size_t number,
                         unsigned char* chunk) const noexcept {
    std::FILE* file = std::fopen(takePath(m_folder, number).text(), "wb");
    if (file == nullptr) return false;
    const bool isWritten =
        forEachChunk(take.samples.get(), chunk, [file](const void* bytes, std::size_t count) {
            return std::fwrite(bytes, 1, count, file) == count;
        });
    return closeStored(file) && isWritten;
}

// Next to the contents, then in their place.
bool Document::writeContents() const noexcept {
    const Path path = contentsPath(m_folder, ""), temporary = contentsPath(m_folder, ".new");
    std::FILE* file = std::fopen(temporary.text(), "wb");
    if (file == nullptr) return false;
    Line line;
    std::uint32_t checksum = 0;
    for (std::size_t number = 0; number < m_takes.size(); ++number) {
        const std::string_view text = takeLine(line, number, m_takes[number].checksum);
        std::fwrite(text.data(), 1, text.size(), file);
        checksum = QKCRC32(checksum, text.data(), text.size());
    }
    const std::string_view end = endLine(line, m_takes.size(), checksum);
    std::fwrite(end.data(), 1, end.size(), file);
    const bool isWritten = std::ferror(file) == 0;
    return closeStored(file) && isWritten && std::rename(temporary.text(), path.text()) == 0;
}

Dropped Document::unloadStored() noexcept {
    Dropped all;
    for (Take& take : m_takes) {
        if (!take.isStored || take.samples == nullptr) continue;
        take.samples.reset();
        all = {all.count + 1, all.bytes + 2 * kTakeFrames * sizeof(float)};
    }
    return all;
}

bool Document::isIntact() const {
    std::string expected;
    Line line;
    for (std::size_t number = 0; number < m_takes.size(); ++number) {
        const std::string take = contentsOf(takePath(m_folder, number).text());
        if (QKCRC32(0, take.data(), take.size()) != m_takes[number].checksum) return false;
        expected += takeLine(line, number, m_takes[number].checksum);
    }
    expected += endLine(line, m_takes.size(), QKCRC32(0, expected.data(), expected.size()));
    return contentsOf(contentsPath(m_folder, "").text()) == expected;
}

}  // namespace veltra::survivor
