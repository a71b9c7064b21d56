// SPDX-License-Identifier: MIT
#include "benchmarks/converter_shapes.h"

#include <cstdint>
#include <cstring>
#include <memory>

#include <SDL2/SDL_audio.h>
#include <pulse/sample.h>
#include <samplerate.h>
#include <volk/volk.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>

using PulseConvert = void (*)(unsigned count, const void* from, void* to);
PulseConvert pa_get_convert_to_float32ne_function(pa_sample_format_t format);
PulseConvert pa_get_convert_from_float32ne_function(pa_sample_format_t format);
void pa_cpu_init(void* info);
}

namespace {

using Peers = std::vector<std::pair<std::string, Conversion>>;

template <class Type>
Type* as(unsigned char* bytes) {
    return reinterpret_cast<Type*>(bytes);
}

unsigned countOf(const Samples& samples) {
    return static_cast<unsigned>(samples.frames);
}

// Signed, of the host's byte order.
Conversion volk(const Shape& shape) {
    if (shape.isBig != (shape.bytes == 1) || shape.bytes == 3) return nullptr;
    if (shape.isStereo) {
        if (shape.bytes == 1 && shape.toFloat)
            return [](const Samples& s) {
                volk_8ic_s32f_deinterleave_32f_x2(s.left, s.right, as<lv_8sc_t>(s.stream), 0x1p7F,
                                                  countOf(s));
            };
        if (shape.bytes == 2 && shape.toFloat)
            return [](const Samples& s) {
                volk_16ic_s32f_deinterleave_32f_x2(s.left, s.right, as<lv_16sc_t>(s.stream),
                                                   0x1p15F, countOf(s));
            };
        if (shape.bytes == 2)
            return [](const Samples& s) {
                volk_32f_x2_s32f_interleave_16ic(as<lv_16sc_t>(s.stream), s.left, s.right, 0x1p15F,
                                                 countOf(s));
            };
        return nullptr;
    }
    if (shape.toFloat) {
        if (shape.bytes == 1)
            return [](const Samples& s) {
                volk_8i_s32f_convert_32f(s.left, as<std::int8_t>(s.stream), 0x1p7F, countOf(s));
            };
        if (shape.bytes == 2)
            return [](const Samples& s) {
                volk_16i_s32f_convert_32f(s.left, as<std::int16_t>(s.stream), 0x1p15F, countOf(s));
            };
        return [](const Samples& s) {
            volk_32i_s32f_convert_32f(s.left, as<std::int32_t>(s.stream), 0x1p31F, countOf(s));
        };
    }
    if (shape.bytes == 1)
        return [](const Samples& s) {
            volk_32f_s32f_convert_8i(as<std::int8_t>(s.stream), s.left, 0x1p7F, countOf(s));
        };
    if (shape.bytes == 2)
        return [](const Samples& s) {
            volk_32f_s32f_convert_16i(as<std::int16_t>(s.stream), s.left, 0x1p15F, countOf(s));
        };
    return [](const Samples& s) {
        volk_32f_s32f_convert_32i(as<std::int32_t>(s.stream), s.left, 0x1p31F, countOf(s));
    };
}

// Little-endian; 8 bits without a sign.
Conversion swresample(const Shape& shape) {
    if (shape.isBig || shape.bytes == 3) return nullptr;
    const AVSampleFormat formats[] = {AV_SAMPLE_FMT_U8, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_NONE,
                                      AV_SAMPLE_FMT_S32};
    const AVSampleFormat stream = formats[shape.bytes - 1];
    const AVSampleFormat floats = shape.isStereo ? AV_SAMPLE_FMT_FLTP : AV_SAMPLE_FMT_FLT;
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, shape.isStereo ? 2 : 1);
    SwrContext* made = nullptr;
    swr_alloc_set_opts2(&made, &layout, shape.toFloat ? floats : stream, 48000, &layout,
                        shape.toFloat ? stream : floats, 48000, 0, nullptr);
    const std::shared_ptr<SwrContext> context(made, [](SwrContext* last) { swr_free(&last); });
    if (context == nullptr || swr_init(context.get()) < 0) return nullptr;
    return [context, toFloat = shape.toFloat](const Samples& s) {
        unsigned char* bytes[] = {s.stream};
        unsigned char* channels[] = {reinterpret_cast<unsigned char*>(s.left),
                                     reinterpret_cast<unsigned char*>(s.right)};
        const auto* const* const from =
            const_cast<const std::uint8_t**>(toFloat ? bytes : channels);
        const int count = static_cast<int>(s.frames);
        swr_convert(context.get(), toFloat ? channels : bytes, count,
                    const_cast<const std::uint8_t**>(from), count);
    };
}

// In place, with the copies that takes.
Conversion sdl(const Shape& shape, std::size_t frames) {
    if (shape.isStereo || shape.bytes == 3) return nullptr;
    const SDL_AudioFormat formats[][2] = {
        {AUDIO_U8, AUDIO_S8}, {AUDIO_S16LSB, AUDIO_S16MSB}, {}, {AUDIO_S32LSB, AUDIO_S32MSB}};
    const SDL_AudioFormat stream = formats[shape.bytes - 1][shape.isBig ? 1 : 0];
    SDL_AudioCVT converter{};
    if (SDL_BuildAudioCVT(&converter, shape.toFloat ? stream : AUDIO_F32SYS, 1, 48000,
                          shape.toFloat ? AUDIO_F32SYS : stream, 1, 48000) < 0)
        return nullptr;
    const auto buffer = std::make_shared<std::vector<float>>(frames);
    return [converter, buffer, shape](const Samples& s) mutable {
        converter.buf = reinterpret_cast<Uint8*>(buffer->data());
        const std::size_t streamSize = shape.bytes * s.frames;
        const std::size_t floatsSize = sizeof(float) * s.frames;
        converter.len = static_cast<int>(shape.toFloat ? streamSize : floatsSize);
        if (shape.toFloat) {
            std::memcpy(converter.buf, s.stream, streamSize);
            SDL_ConvertAudio(&converter);
            std::memcpy(s.left, converter.buf, floatsSize);
        } else {
            std::memcpy(converter.buf, s.left, floatsSize);
            SDL_ConvertAudio(&converter);
            std::memcpy(s.stream, converter.buf, streamSize);
        }
    };
}

Conversion pulse(const Shape& shape) {
    static const bool ready = [] {
        std::uint64_t info[16] = {};  // more than its structure takes
        pa_cpu_init(info);
        return true;
    }();
    const pa_sample_format_t formats[][2] = {{PA_SAMPLE_U8, PA_SAMPLE_INVALID},
                                             {PA_SAMPLE_S16LE, PA_SAMPLE_S16BE},
                                             {PA_SAMPLE_S24LE, PA_SAMPLE_S24BE},
                                             {PA_SAMPLE_S32LE, PA_SAMPLE_S32BE}};
    const pa_sample_format_t format = formats[shape.bytes - 1][shape.isBig ? 1 : 0];
    if (!ready || shape.isStereo || format == PA_SAMPLE_INVALID) return nullptr;
    if (shape.toFloat) {
        return [convert = pa_get_convert_to_float32ne_function(format)](const Samples& s) {
            convert(countOf(s), s.stream, s.left);
        };
    }
    return [convert = pa_get_convert_from_float32ne_function(format)](const Samples& s) {
        convert(countOf(s), s.left, s.stream);
    };
}

Conversion samplerate(const Shape& shape) {
    if (shape.isBig || shape.isStereo || shape.bytes % 2 != 0) return nullptr;
    const bool isShort = shape.bytes == 2;
    if (shape.toFloat) {
        return [isShort](const Samples& s) {
            const int count = static_cast<int>(s.frames);
            isShort ? src_short_to_float_array(as<short>(s.stream), s.left, count)
                    : src_int_to_float_array(as<int>(s.stream), s.left, count);
        };
    }
    return [isShort](const Samples& s) {
        const int count = static_cast<int>(s.frames);
        isShort ? src_float_to_short_array(s.left, as<short>(s.stream), count)
                : src_float_to_int_array(s.left, as<int>(s.stream), count);
    };
}

}  // namespace

std::vector<std::pair<std::string, Conversion>> peersOf(const Shape& shape, std::size_t frames) {
    Peers peers{{"volk", volk(shape)},
                {"swresample", swresample(shape)},
                {"sdl", sdl(shape, frames)},
                {"pulse", pulse(shape)},
                {"samplerate", samplerate(shape)},
                {"pipewire", pipewireConversion(shape, frames)},
                {"sndfile", sndfileConversion(shape)}};
    std::erase_if(peers, [](const auto& peer) { return !peer.second; });
    return peers;
}
