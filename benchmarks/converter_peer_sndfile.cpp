// SPDX-License-Identifier: MIT
#include "benchmarks/converter_shapes.h"

#include <cstring>
#include <limits>
#include <memory>

#include <sndfile.h>

namespace {

// A raw file without an end whose bytes are those of the stream, from its start for each
// conversion.
class StreamFile {
public:
    explicit StreamFile(const Shape& shape) : m_shape(shape) {}
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;
    ~StreamFile() { sf_close(m_file); }

    bool open() {
        constexpr int kTypes[] = {SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16, SF_FORMAT_PCM_24,
                                  SF_FORMAT_PCM_32};
        SF_VIRTUAL_IO calls{};
        calls.get_filelen = [](void*) { return std::numeric_limits<sf_count_t>::max() / 2; };
        calls.seek = [](sf_count_t offset, int, void*) { return offset; };
        calls.tell = [](void* self) { return static_cast<StreamFile*>(self)->m_at; };
        calls.read = [](void* to, sf_count_t size, void* self) {
            auto& file = *static_cast<StreamFile*>(self);
            std::memcpy(to, file.m_stream + file.m_at, static_cast<std::size_t>(size));
            file.m_at += size;
            return size;
        };
        calls.write = [](const void* from, sf_count_t size, void* self) {
            auto& file = *static_cast<StreamFile*>(self);
            std::memcpy(file.m_stream + file.m_at, from, static_cast<std::size_t>(size));
            file.m_at += size;
            return size;
        };
        SF_INFO info{};
        info.samplerate = 48000;
        info.channels = 1;
        info.format =
            SF_FORMAT_RAW | (m_shape.isBig ? SF_ENDIAN_BIG : SF_ENDIAN_LITTLE) |
            (m_shape.bytes == 1 && m_shape.isBig ? SF_FORMAT_PCM_S8 : kTypes[m_shape.bytes - 1]);
        m_file = sf_open_virtual(&calls, m_shape.toFloat ? SFM_READ : SFM_WRITE, &info, this);
        // Without it what is beyond full scale wraps round.
        sf_command(m_file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
        return m_file != nullptr;
    }

    void convert(const Samples& samples) {
        m_stream = samples.stream;
        m_at = 0;
        const auto count = static_cast<sf_count_t>(samples.frames);
        m_shape.toFloat ? sf_readf_float(m_file, samples.left, count)
                        : sf_writef_float(m_file, samples.left, count);
    }

private:
    Shape m_shape;
    SNDFILE* m_file = nullptr;
    unsigned char* m_stream = nullptr;
    sf_count_t m_at = 0;
};

}  // namespace

Conversion sndfileConversion(const Shape& shape) {
    if (shape.isStereo) return nullptr;
    const auto file = std::make_shared<StreamFile>(shape);
    if (!file->open()) return nullptr;
    return [file](const Samples& samples) { file->convert(samples); };
}
