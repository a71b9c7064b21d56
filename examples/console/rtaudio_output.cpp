// SPDX-License-Identifier: MIT
// Audio devices through RtAudio: a module of its own, see audio_output.h.
#include "audio_output.h"
#include "rtaudio_versions.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <memory>
#include <stdexcept>

#include <alsa/asoundlib.h>
#ifdef CONSOLE_HAS_PULSE
#include <pulse/pulseaudio.h>
#endif

namespace veltra::console {

namespace {

constexpr std::uint32_t kMostOutputs = 2;
constexpr int kGoOn = 0;
constexpr int kStopAtOnce = 2;  // what is in the device's buffers is not played

// Sound libraries like to tell standard error about every device they do not find. RtAudio silences
// JACK by itself, and rtaudio_versions.h silences RtAudio; ALSA has a handler.
void ignoreAlsa(const char*, int, const char*, int, const char*, ...) {}

// RtAudio crashes when it asks a PulseAudio server that has no sink for its devices: the server is
// asked for its default one first.
#ifdef CONSOLE_HAS_PULSE
bool hasPulseSink() {
    bool hasSink = false;
    const auto look = [](pa_context*, const pa_server_info* info, void* answer) {
        *static_cast<bool*>(answer) = info != nullptr && info->default_sink_name != nullptr;
    };
    pa_mainloop* const loop = pa_mainloop_new();
    pa_context* const context = pa_context_new(pa_mainloop_get_api(loop), "veltra-console");
    pa_operation* question = nullptr;
    bool isGood = pa_context_connect(context, nullptr, PA_CONTEXT_NOFLAGS, nullptr) >= 0;
    while (isGood &&
           (question == nullptr || pa_operation_get_state(question) == PA_OPERATION_RUNNING)) {
        isGood = pa_mainloop_iterate(loop, 1, nullptr) >= 0 &&
                 PA_CONTEXT_IS_GOOD(pa_context_get_state(context)) != 0;
        if (question == nullptr && pa_context_get_state(context) == PA_CONTEXT_READY)
            question = pa_context_get_server_info(context, look, &hasSink);
    }
    if (question != nullptr) pa_operation_unref(question);
    pa_context_disconnect(context);
    pa_context_unref(context);
    pa_mainloop_free(loop);
    return hasSink;
}
#else
bool hasPulseSink() {
    return true;
}
#endif

std::vector<RtAudio::Api> soundSystems() {
    snd_lib_error_set_handler(&ignoreAlsa);
    std::vector<RtAudio::Api> systems;
    RtAudio::getCompiledApi(systems);
    if (!hasPulseSink()) std::erase(systems, RtAudio::LINUX_PULSE);
    return systems;
}

std::string idOf(RtAudio::Api system, const RtAudio::DeviceInfo& device) {
    return RtAudio::getApiName(system) + ":" + device.name;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

bool isWanted(const std::string& wanted, RtAudio::Api system, const RtAudio::DeviceInfo& device) {
    return wanted == idOf(system, device) ||
           lowerCase(device.name).find(lowerCase(wanted)) != std::string::npos;
}

class RtAudioOutput final : public AudioOutput {
public:
    ~RtAudioOutput() override {
        if (m_device && m_device->isStreamOpen()) m_device->closeStream();
    }

    // Tries the sound systems in RtAudio's order until one has a device that is wanted and opens.
    bool open(const Device& wanted, std::int32_t rate) {
        const auto systems = soundSystems();
        return std::any_of(systems.begin(), systems.end(), [&](RtAudio::Api system) {
            try {
                return openOn(system, wanted, rate);
            } catch (const std::runtime_error&) {
                return false;
            }
        });
    }

    std::string name() const override { return m_name; }
    std::int32_t rate() const override { return m_rate; }
    std::uint32_t blockFrames() const override { return m_blockFrames; }
    bool isRunning() const override { return m_device->isStreamRunning(); }
    std::uint64_t underruns() const override { return m_underruns.load(std::memory_order_relaxed); }

    bool start(Callback callback, void* context) override try {
        m_callback = callback;
        m_context = context;
        return startStream(*m_device);
    } catch (const std::runtime_error&) {
        return false;
    }

    void stop() override try {
        if (m_device->isStreamRunning()) m_device->stopStream();
    } catch (const std::runtime_error&) {
        // The device is gone: nothing runs any more, which was the wish.
    }

private:
    bool openOn(RtAudio::Api system, const Device& wanted, std::int32_t rate) {
        m_device = connectTo(system);
        const std::vector<unsigned> ids = deviceIds(*m_device);
        if (ids.empty()) return false;
        unsigned id = m_device->getDefaultOutputDevice();
        RtAudio::DeviceInfo device = m_device->getDeviceInfo(id);
        const auto suits = [&] { return canPlay(device) && isWanted(wanted.id, system, device); };
        for (std::size_t i = 0; wanted.id != "auto" && !suits(); ++i) {
            if (i == ids.size()) return false;
            id = ids[i];
            device = m_device->getDeviceInfo(id);
        }
        if (!canPlay(device)) return false;

        const auto& rates = device.sampleRates;
        unsigned chosen = device.preferredSampleRate;
        for (const std::int32_t each : {rate, wanted.rate}) {
            const auto number32 = static_cast<unsigned>(each);
            if (std::find(rates.begin(), rates.end(), number32) != rates.end()) chosen = number32;
        }
        m_outputs = std::min(device.outputChannels, kMostOutputs);
        RtStream stream{};
        stream.output.deviceId = id;
        stream.output.nChannels = m_outputs;
        stream.rate = chosen;
        stream.frames = wanted.blockFrames > 0 ? wanted.blockFrames : kUsualBlockFrames;
        stream.render = &render;
        stream.userData = this;
        stream.options.flags = RTAUDIO_NONINTERLEAVED | RTAUDIO_SCHEDULE_REALTIME;
        stream.options.streamName = "veltra-console";
        if (!openStream(*m_device, stream)) return false;
        m_rate = static_cast<std::int32_t>(m_device->getStreamSampleRate());
        m_blockFrames = stream.frames;
        m_name = device.name + " (" + RtAudio::getApiDisplayName(system) + ")";
        return true;
    }

    // Realtime-safe: yes, it only finds the channels in RtAudio's one buffer.
    static int render(void* output, void*, unsigned frames, double, RtAudioStreamStatus status,
                      void* userData) {
        auto& self = *static_cast<RtAudioOutput*>(userData);
        if ((status & RTAUDIO_OUTPUT_UNDERFLOW) != 0)
            self.m_underruns.fetch_add(1, std::memory_order_relaxed);
        std::array<float*, kMostOutputs> channels{};
        for (std::uint32_t channel = 0; channel < self.m_outputs; ++channel) {
            channels[channel] = static_cast<float*>(output) + std::size_t{channel} * frames;
        }
        const bool goesOn =
            self.m_callback(self.m_context, channels.data(), self.m_outputs, frames);
        return goesOn ? kGoOn : kStopAtOnce;
    }

    std::unique_ptr<RtAudio> m_device;
    std::string m_name;
    std::int32_t m_rate = 0;
    std::uint32_t m_blockFrames = 0;
    std::uint32_t m_outputs = 0;
    Callback m_callback = nullptr;
    void* m_context = nullptr;
    std::atomic<std::uint64_t> m_underruns{0};  // audio thread counts, any reads
};

void listDevicesOf(RtAudio::Api system, std::vector<DeviceInfo>& devices) {
    const auto asked = connectTo(system);
    for (const unsigned id : deviceIds(*asked)) {
        const RtAudio::DeviceInfo device = asked->getDeviceInfo(id);
        if (!canPlay(device)) continue;
        DeviceInfo& info = devices.emplace_back();
        info.id = idOf(system, device);
        info.name = device.name + " (" + RtAudio::getApiDisplayName(system) + ")";
        info.rates.assign(device.sampleRates.begin(), device.sampleRates.end());
        info.isDefault = device.isDefaultOutput;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) AudioOutput* veltraConsoleOpenDevice(
    const Device& device, std::int32_t rate) {
    auto output = std::make_unique<RtAudioOutput>();
    return output->open(device, rate) ? output.release() : nullptr;
}

extern "C" __attribute__((visibility("default"))) void veltraConsoleListDevices(
    std::vector<DeviceInfo>& devices) {
    for (const RtAudio::Api system : soundSystems()) {
        try {
            listDevicesOf(system, devices);
        } catch (const std::runtime_error&) {
            // This system does not run: it has no devices.
        }
    }
}

}  // namespace veltra::console
