// SPDX-License-Identifier: MIT
// A stereo WAV file that is being written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace veltra::console {

enum class MixFormat { Float, Int16, Int24 };

// Written beside its place and put there when it is finished, so that nobody finds half a mix.
// Beyond 4 GiB it becomes RF64. The same samples give the same bytes.
// Thread: one at a time. Realtime-safe: no.
class MixFile {
public:
    // Null when the file cannot be made; `problem` is then a line for the user.
    static std::unique_ptr<MixFile> create(const std::string& path, std::int32_t rate,
                                           MixFormat format, std::string& problem);
    MixFile(const MixFile&) = delete;
    MixFile& operator=(const MixFile&) = delete;
    ~MixFile();  // what is not finished is gone

    // Integers are cut off at full scale. Answers false when the disk takes no more.
    bool write(const float* left, const float* right, std::size_t frames);

    // Answers an empty text, or why there is no such file.
    std::string finish();

private:
    MixFile(const std::string& path, std::int32_t rate, MixFormat format);

    std::string header() const;
    void fail(int error);

    const std::string m_path;
    const std::string m_temporary;
    const std::int32_t m_rate;
    const MixFormat m_format;
    std::FILE* m_file = nullptr;
    std::uint64_t m_frames = 0;
    std::vector<unsigned char> m_bytes;  // of a piece
    int m_error = 0;                     // the system's number
};

}  // namespace veltra::console
