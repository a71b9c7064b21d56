// SPDX-License-Identifier: MIT
// Audio devices through RtAudio: a module of its own, see audio_output.h.
#include "audio_output.h"

#include <algorithm>
#include <array>
#include <memory>

#include <alsa/asoundlib.h>
#include <rtaudio/RtAudio.h>

namespace veltra::console {

namespace {

constexpr std::uint32_t kMostOutputs = 2;
constexpr unsigned kBlockFrames = 512;

// Sound libraries like to tell standard error about every device they do not find. RtAudio silences
// JACK by itself and has a switch and a handler for its own texts; ALSA has a handler.
void ignoreAlsa(const char*, int, const char*, int, const char*, ...) {}
void ignoreRtAudio(RtAudioError::Type, const std::string&) {}

class RtAudioOutput final : public AudioOutput {
public:
    ~RtAudioOutput() override {
        if (m_device && m_device->isStreamOpen()) m_device->closeStream();
    }

    // Tries the sound systems in RtAudio's order until one has a device that opens.
    bool open(std::int32_t rate) {
        std::vector<RtAudio::Api> systems;
        RtAudio::getCompiledApi(systems);
        return std::any_of(systems.begin(), systems.end(), [this, rate](RtAudio::Api system) {
            try {
                return openOn(system, rate);
            } catch (const RtAudioError&) {
                return false;
            }
        });
    }

    std::string name() const override { return m_name; }
    std::int32_t rate() const override { return m_rate; }
    bool isRunning() const override { return m_device->isStreamRunning(); }

    bool start(Callback callback, void* context) override try {
        m_callback = callback;
        m_context = context;
        m_device->startStream();
        return true;
    } catch (const RtAudioError&) {
        return false;
    }

    void stop() override try {
        if (m_device->isStreamRunning()) m_device->stopStream();
    } catch (const RtAudioError&) {
        // The device is gone: nothing runs any more, which was the wish.
    }

private:
    bool openOn(RtAudio::Api system, std::int32_t rate) {
        m_device = std::make_unique<RtAudio>(system);
        m_device->showWarnings(false);
        if (m_device->getDeviceCount() == 0) return false;
        const unsigned number = m_device->getDefaultOutputDevice();
        const RtAudio::DeviceInfo device = m_device->getDeviceInfo(number);
        if (!device.probed || device.outputChannels == 0) return false;

        const auto& rates = device.sampleRates;
        const auto wanted = static_cast<unsigned>(rate);
        const bool can = std::find(rates.begin(), rates.end(), wanted) != rates.end();
        const unsigned chosen = can ? wanted : device.preferredSampleRate;
        m_outputs = std::min(device.outputChannels, kMostOutputs);
        RtAudio::StreamParameters parameters;
        parameters.deviceId = number;
        parameters.nChannels = m_outputs;
        RtAudio::StreamOptions options;
        options.flags = RTAUDIO_NONINTERLEAVED | RTAUDIO_SCHEDULE_REALTIME;
        options.streamName = "veltra-console";
        unsigned frames = kBlockFrames;
        m_device->openStream(&parameters, nullptr, RTAUDIO_FLOAT32, chosen, &frames, &render, this,
                             &options, &ignoreRtAudio);
        m_rate = static_cast<std::int32_t>(m_device->getStreamSampleRate());
        m_name = device.name + " (" + RtAudio::getApiDisplayName(system) + ")";
        return true;
    }

    // Realtime-safe: yes, it only finds the channels in RtAudio's one buffer.
    static int render(void* output, void*, unsigned frames, double, RtAudioStreamStatus,
                      void* userData) {
        const auto& self = *static_cast<const RtAudioOutput*>(userData);
        std::array<float*, kMostOutputs> channels{};
        for (std::uint32_t channel = 0; channel < self.m_outputs; ++channel) {
            channels[channel] = static_cast<float*>(output) + std::size_t{channel} * frames;
        }
        self.m_callback(self.m_context, channels.data(), self.m_outputs, frames);
        return 0;
    }

    std::unique_ptr<RtAudio> m_device;
    std::string m_name;
    std::int32_t m_rate = 0;
    std::uint32_t m_outputs = 0;
    Callback m_callback = nullptr;
    void* m_context = nullptr;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) AudioOutput* veltraConsoleOpenDevice(
    std::int32_t rate) {
    snd_lib_error_set_handler(&ignoreAlsa);
    auto output = std::make_unique<RtAudioOutput>();
    return output->open(rate) ? output.release() : nullptr;
}

}  // namespace veltra::console
