// SPDX-License-Identifier: MIT
// Sample converters beside the libraries that convert the same format, the contract written as a
// plain loop for this very machine, and memcpy of the same traffic.
#include "benchmarks/converter_shapes.h"
#include "benchmarks/processor_benchmark.h"
#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t kSizes[] = {64, 512, 4096, std::size_t{1} << 20U};

class Buffers {
public:
    Buffers(const Shape& shape, std::size_t frames, float peak)
        : samples{nullptr, nullptr, nullptr, frames},
          m_shape(shape),
          m_size(aligned(shape.frameSize() * frames) + 2 * aligned(sizeof(float) * frames)),
          m_bytes(new (std::align_val_t{64}) unsigned char[m_size]) {
        samples.stream = m_bytes.get();
        unsigned char* const floats = samples.stream + aligned(shape.frameSize() * frames);
        samples.left = reinterpret_cast<float*>(floats);
        float* const right = reinterpret_cast<float*>(floats + aligned(sizeof(float) * frames));
        std::uint32_t random = 1;
        for (std::size_t i = 0; i < frames; ++i) {
            for (float* const channel : {samples.left, right}) {
                random = random * 1664525U + 1013904223U;
                channel[i] =
                    peak * static_cast<float>(static_cast<std::int32_t>(random)) * 0x1p-31F;
            }
        }
        if (shape.isStereo) samples.right = right;
        Shape back = shape;
        back.toFloat = false;
        exactLoop(back)(samples);
    }

    // What a conversion made, and afterwards the buffers are as they were made.
    std::vector<unsigned char> resultOf(const Conversion& convert) const {
        const std::size_t floats = samples.frames * sizeof(float);
        const std::vector<unsigned char> before(m_bytes.get(), m_bytes.get() + m_size);
        std::vector<std::span<unsigned char>> made;
        if (!m_shape.toFloat)
            made.emplace_back(samples.stream, m_shape.frameSize() * samples.frames);
        if (m_shape.toFloat)
            made.emplace_back(reinterpret_cast<unsigned char*>(samples.left), floats);
        if (m_shape.toFloat && m_shape.isStereo)
            made.emplace_back(reinterpret_cast<unsigned char*>(samples.right), floats);
        // What is timed is never a first call. And both sides of the buffers hold the same sound:
        // unless one is overwritten, doing nothing would pass for a conversion.
        convert(samples);
        for (const std::span<unsigned char> part : made)
            std::fill(part.begin(), part.end(), std::uint8_t{0x55});
        convert(samples);
        std::vector<unsigned char> result;
        for (const std::span<unsigned char> part : made)
            result.insert(result.end(), part.begin(), part.end());
        std::copy(before.begin(), before.end(), m_bytes.get());
        return result;
    }

    Samples samples;

private:
    struct Free {
        void operator()(unsigned char* bytes) const {
            ::operator delete[](bytes, std::align_val_t{64});
        }
    };
    // Buffers that lie whole pages apart would make loads wait for stores that they never meet.
    static std::size_t aligned(std::size_t size) { return size / 64 * 64 + 1088; }

    Shape m_shape;
    std::size_t m_size;
    std::unique_ptr<unsigned char[], Free> m_bytes;
};

Conversion oursOf(const Shape& shape) {
    const auto format = static_cast<std::int32_t>(shape.bytes);
    if (shape.toFloat) {
        return [convert = veltra::GetConvertNToFloat(format, !shape.isBig)](const Samples& s) {
            convert(s.left, s.stream, s.frames, s.right);
        };
    }
    return [convert = veltra::GetConvertFloatToN(format, !shape.isBig)](const Samples& s) {
        convert(s.stream, s.left, s.frames, s.right);
    };
}

// Reads and writes as many bytes as a conversion; the buffers of a case lie one behind the other.
Conversion copyOf(const Shape& shape) {
    const std::size_t channels = shape.isStereo ? 2 : 1;
    return [traffic = channels * (shape.bytes + sizeof(float))](const Samples& s) {
        static std::vector<unsigned char> to(std::size_t{8} << 20U);
        std::memcpy(to.data(), s.stream, traffic * s.frames / 2);
    };
}

// Whether two results are the same sound: peers scale by 2^n or 2^n - 1, and round as they like. A
// unit is the last bit of the integers, of 32 bits that of the upper 24.
bool soundsLike(const Shape& shape, float units, std::vector<unsigned char> one,
                std::vector<unsigned char> other) {
    if (!shape.toFloat) {
        for (std::vector<unsigned char>* const result : {&one, &other}) {
            Shape mono = shape;
            mono.toFloat = true;
            mono.isStereo = false;
            const std::size_t count = result->size() / shape.bytes;
            std::vector<unsigned char> floats(count * sizeof(float));
            exactLoop(mono)(
                {result->data(), reinterpret_cast<float*>(floats.data()), nullptr, count});
            *result = floats;
        }
    }
    const float step =
        units * std::max(std::ldexp(2.0F, -8 * static_cast<int>(shape.bytes)), 0x1p-23F);
    for (std::size_t at = 0; at < one.size(); at += sizeof(float)) {
        float samples[2];
        std::memcpy(&samples[0], &one[at], sizeof(float));
        std::memcpy(&samples[1], &other[at], sizeof(float));
        if (!(std::fabs(samples[0] - samples[1]) <= step)) return false;
    }
    return true;
}

std::string nameOf(const Shape& shape) {
    std::string name(1, shape.isUnsigned() ? 'u' : 's');
    name.append(std::to_string(8 * shape.bytes));
    if (shape.bytes > 1) name.append(shape.isBig ? "be" : "le");
    if (shape.toFloat)
        name.append(">f32");
    else
        name.insert(0, "f32>");
    return name.append(shape.isStereo ? " stereo " : " mono ");
}

class Case {
public:
    Case(RatioList& list, const Shape& shape, std::size_t frames, float peak,
         const std::string& kind)
        : m_list(list),
          m_shape(shape),
          m_frames(frames),
          m_buffers(std::make_shared<Buffers>(shape, frames, peak)),
          m_name(nameOf(shape) + kind + std::to_string(frames) + ' ') {}

    bool add(bool judged) {
        const Conversion ours = oursOf(m_shape);
        const std::vector<unsigned char> result = m_buffers->resultOf(ours);
        if (result != m_buffers->resultOf(exactLoop(m_shape))) return false;
        const bool isLong = m_frames > 4096, isShort = m_frames < 512;
        const double nearly = !judged ? 0 : isLong || isShort ? 1.10 : 1.05;
        const char* const name = add("ours", ours);
        m_list.compare(name, add("loop", exactLoop(m_shape)), nearly);
        bool hasVectors = false;
        for (const auto& [peer, convert] : peersOf(m_shape, m_frames)) {
            // The two that are farthest from the contract.
            const float units = peer == "sdl" || peer == "pulse" ? 2 : 1;
            if (judged && !soundsLike(m_shape, units, result, m_buffers->resultOf(convert))) {
                std::printf("%s%s converts something else\n", m_name.c_str(), peer.c_str());
                return false;
            }
            m_list.compare(name, add(peer, convert), nearly);
            hasVectors = hasVectors || peer == "volk" || peer == "swresample";
        }
        const double copies = hasVectors || !judged || m_frames < 4096 ? 0 : isLong ? 1.25 : 2.5;
        m_list.compare(name, add("memcpy", copyOf(m_shape)), copies);
        return true;
    }

private:
    const char* add(const std::string& who, const Conversion& convert) {
        return m_list.add(
            m_name + who,
            [convert, buffers = m_buffers](benchmark::State& state) {
                for (auto _ : state) {
                    convert(buffers->samples);
                    benchmark::ClobberMemory();
                }
            },
            0.01);
    }

    RatioList& m_list;
    Shape m_shape;
    std::size_t m_frames;
    std::shared_ptr<Buffers> m_buffers;
    std::string m_name;
};

}  // namespace

bool addConverters(RatioList& list) {
    for (const std::size_t frames : kSizes) {
        for (const bool toFloat : {true, false}) {
            for (std::size_t bytes = 1; bytes <= 4; ++bytes) {
                for (const bool isBig : {true, false}) {
                    for (const bool isStereo : {false, true}) {
                        const Shape shape{bytes, isBig, toFloat, isStereo};
                        if (bytes == 4 && toFloat && isStereo) continue;
                        if (!Case(list, shape, frames, 0.98F, "").add(true)) return false;
                        if (toFloat || isStereo || frames != 4096) continue;
                        if (!Case(list, shape, frames, 1.25F, "clipping ").add(false)) return false;
                    }
                }
            }
        }
    }
    return true;
}
