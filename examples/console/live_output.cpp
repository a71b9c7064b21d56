// SPDX-License-Identifier: MIT
#include "live_output.h"

namespace veltra::console {

namespace {

void renderBlock(void* engine, float* const* outputs, std::uint32_t outputCount,
                 std::uint32_t frames) noexcept {
    static_cast<Engine*>(engine)->processBlock(outputs, outputCount, frames);
}

}  // namespace

LiveOutput::LiveOutput(Device device, std::int32_t rate, std::string& notice) {
    if (device == Device::Auto) m_output = openDeviceOutput(rate, notice);
    if (!m_output) m_output = openNullOutput(rate);
}

std::string LiveOutput::start(Engine& engine) {
    m_engine = &engine;
    if (m_output->start(&renderBlock, m_engine)) return {};
    std::string problem =
        m_output->name() + ": the audio device does not start; playing to no device";
    m_output = openNullOutput(m_output->rate());
    m_output->start(&renderBlock, m_engine);
    return problem;
}

std::string LiveOutput::keepRunning() {
    if (m_output->isRunning()) return {};
    std::string problem = m_output->name() + ": the audio device has stopped; playing to no device";
    m_output = openNullOutput(m_output->rate());  // the one before stops first
    start(*m_engine);
    return problem;
}

}  // namespace veltra::console
