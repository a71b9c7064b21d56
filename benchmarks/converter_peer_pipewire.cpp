// SPDX-License-Identifier: MIT
#include "benchmarks/converter_shapes.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <dlfcn.h>
#include <spa/node/command.h>
#include <spa/node/io.h>
#include <spa/node/node.h>
#include <spa/param/audio/format-utils.h>
#include <spa/param/param.h>
#include <spa/support/cpu.h>
#include <spa/support/plugin.h>
#include <spa/utils/names.h>

namespace {

// One object of a plugin.
class Plugin {
public:
    Plugin(const char* path, std::string_view factoryName, const spa_dict* settings,
           const spa_support* support) {
        void* const library = ::dlopen(path, RTLD_NOW);
        if (library == nullptr) return;
        const auto next = reinterpret_cast<spa_handle_factory_enum_func_t>(
            ::dlsym(library, SPA_HANDLE_FACTORY_ENUM_FUNC_NAME));
        const spa_handle_factory* factory = nullptr;
        for (std::uint32_t index = 0; next != nullptr && next(&factory, &index) == 1;) {
            if (factory->name != factoryName) continue;
            auto* const made =
                static_cast<spa_handle*>(std::calloc(1, factory->get_size(factory, settings)));
            if (made == nullptr) return;
            if (factory->init(factory, made, settings, support, support != nullptr ? 1 : 0) < 0)
                std::free(made);
            else
                m_handle = made;
            return;
        }
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() {
        if (m_handle == nullptr) return;
        m_handle->clear(m_handle);
        std::free(m_handle);
    }

    spa_interface* interface(const char* type) const {
        void* found = nullptr;
        if (m_handle == nullptr || m_handle->get_interface(m_handle, type, &found) < 0)
            return nullptr;
        return static_cast<spa_interface*>(found);
    }

private:
    spa_handle* m_handle = nullptr;
};

// What tells the converter which instructions it may use.
spa_support cpuSupport() {
    static const Plugin s_cpu(SPA_SUPPORT, SPA_NAME_SUPPORT_CPU, nullptr, nullptr);
    return {SPA_TYPE_INTERFACE_CPU, s_cpu.interface(SPA_TYPE_INTERFACE_CPU)};
}

// The buffer of a port, with one block of memory for each channel that lies apart.
struct Port {
    spa_chunk chunks[2] = {};
    spa_data blocks[2] = {};
    spa_buffer buffer = {};
    spa_io_buffers exchange = {SPA_STATUS_NEED_DATA, SPA_ID_INVALID};

    void set(std::size_t block, void* memory, std::size_t size) {
        chunks[block].size = static_cast<std::uint32_t>(size);
        spa_data& data = blocks[block];
        data.type = SPA_DATA_MemPtr;
        data.flags = SPA_DATA_FLAG_READWRITE;
        data.fd = -1;
        data.maxsize = static_cast<std::uint32_t>(size);
        data.data = memory;
        data.chunk = &chunks[block];
        buffer.n_datas = static_cast<std::uint32_t>(block + 1);
        buffer.datas = blocks;
    }
};

class Node {
public:
    Node(const Shape& shape, std::size_t frames)
        : m_shape(shape), m_limit(std::to_string(frames)) {}

    bool start() {
        constexpr spa_audio_format kFormats[][2] = {
            {SPA_AUDIO_FORMAT_U8, SPA_AUDIO_FORMAT_S8},
            {SPA_AUDIO_FORMAT_S16_LE, SPA_AUDIO_FORMAT_S16_BE},
            {SPA_AUDIO_FORMAT_S24_LE, SPA_AUDIO_FORMAT_S24_BE},
            {SPA_AUDIO_FORMAT_S32_LE, SPA_AUDIO_FORMAT_S32_BE}};
        const spa_interface* const found = m_plugin.interface(SPA_TYPE_INTERFACE_Node);
        if (found == nullptr || m_support.data == nullptr) return false;
        m_methods = static_cast<const spa_node_methods*>(found->cb.funcs);
        m_object = found->cb.data;
        if (!setFormat(streamSide(), kFormats[m_shape.bytes - 1][m_shape.isBig ? 1 : 0]) ||
            !setFormat(floatSide(), SPA_AUDIO_FORMAT_F32P))
            return false;
        const spa_command command{{sizeof(spa_command_body), SPA_TYPE_Object},
                                  {{SPA_TYPE_COMMAND_Node, SPA_NODE_COMMAND_Start}}};
        return m_methods->send_command(m_object, &command) >= 0;
    }

    void convert(const Samples& samples) {
        if (samples.stream != m_stream) use(samples);
        Port& from = m_ports[SPA_DIRECTION_INPUT];
        Port& to = m_ports[SPA_DIRECTION_OUTPUT];
        from.exchange = {SPA_STATUS_HAVE_DATA, 0};
        to.exchange.status = SPA_STATUS_NEED_DATA;
        m_methods->process(m_object);
    }

private:
    spa_direction streamSide() const {
        return m_shape.toFloat ? SPA_DIRECTION_INPUT : SPA_DIRECTION_OUTPUT;
    }
    spa_direction floatSide() const {
        return m_shape.toFloat ? SPA_DIRECTION_OUTPUT : SPA_DIRECTION_INPUT;
    }

    bool setFormat(spa_direction side, spa_audio_format format) {
        spa_audio_info_raw info{};
        info.format = format;
        info.rate = 48000;
        info.channels = m_shape.isStereo ? 2 : 1;
        info.position[0] = m_shape.isStereo ? SPA_AUDIO_CHANNEL_FL : SPA_AUDIO_CHANNEL_MONO;
        info.position[1] = SPA_AUDIO_CHANNEL_FR;
        alignas(8) unsigned char bytes[1024];
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, bytes, sizeof bytes);
        const spa_pod* const made = spa_format_audio_raw_build(&builder, SPA_PARAM_Format, &info);
        return m_methods->port_set_param(m_object, side, 0, SPA_PARAM_Format, 0, made) >= 0;
    }

    void use(const Samples& samples) {
        m_stream = samples.stream;
        const std::size_t floats = sizeof(float) * samples.frames;
        m_ports[streamSide()].set(0, samples.stream, m_shape.frameSize() * samples.frames);
        m_ports[floatSide()].set(0, samples.left, floats);
        if (m_shape.isStereo) m_ports[floatSide()].set(1, samples.right, floats);
        for (const spa_direction side : {SPA_DIRECTION_INPUT, SPA_DIRECTION_OUTPUT}) {
            Port& port = m_ports[side];
            spa_buffer* buffer = &port.buffer;
            m_methods->port_use_buffers(m_object, side, 0, 0, &buffer, 1);
            m_methods->port_set_io(m_object, side, 0, SPA_IO_Buffers, &port.exchange,
                                   sizeof port.exchange);
        }
    }

    Shape m_shape;
    // PipeWire itself goes by at most 8192 frames; here one call takes the whole of a buffer.
    std::string m_limit;
    spa_dict_item m_item{"clock.quantum-limit", m_limit.c_str()};
    spa_dict m_settings{0, 1, &m_item};
    spa_support m_support = cpuSupport();
    Plugin m_plugin{SPA_AUDIOCONVERT, SPA_NAME_AUDIO_CONVERT, &m_settings, &m_support};
    const spa_node_methods* m_methods = nullptr;
    void* m_object = nullptr;
    const void* m_stream = nullptr;
    Port m_ports[2];
};

}  // namespace

Conversion pipewireConversion(const Shape& shape, std::size_t frames) {
    const auto node = std::make_shared<Node>(shape, frames);
    if (!node->start()) return nullptr;
    return [node](const Samples& samples) { node->convert(samples); };
}
