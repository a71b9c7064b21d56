// SPDX-License-Identifier: MIT
#include "fold.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltra::console {

namespace {

// Of a place from -1 left to 1 right. The ends are exact, where a cosine is not.
Weights constantPower(double place) noexcept {
    if (place <= -1.0) return {1.0F, 0.0F};
    if (place >= 1.0) return {0.0F, 1.0F};
    const double angle = (place + 1.0) * (std::numbers::pi / 4.0);
    return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
}

double sineOf(const ChannelPlan& plan, ChannelID channel) {
    const float angle = GetAngleForChannel(static_cast<std::uint32_t>(plan.format),
                                           static_cast<std::uint32_t>(channel));
    return std::sin(static_cast<double>(angle) * (std::numbers::pi / 180.0));
}

}  // namespace

Weights foldWeights(const ChannelPlan& plan, std::size_t channel, std::size_t channels) {
    if (channels == 1) return {1.0F, 1.0F};
    if (channel >= plan.order.size()) return constantPower(channel % 2 == 0 ? -1.0 : 1.0);
    const ChannelID id = plan.order[channel];
    if (id == ChannelID::Lfe) return {};
    if (id == ChannelID::Left) return constantPower(-1.0);
    if (id == ChannelID::Right) return constantPower(1.0);
    return constantPower(sineOf(plan, id) / sineOf(plan, ChannelID::Right));
}

bool isLeftOut(const ChannelPlan& plan, std::size_t channel, std::size_t channels) {
    const Weights weights = foldWeights(plan, channel, channels);
    return weights.left == 0.0F && weights.right == 0.0F;
}

Weights panWeights(double pan) noexcept {
    const double place = pan >= -1.0 && pan <= 1.0 ? pan : (pan > 0.0 ? 1.0 : -1.0);
    const double angle = (place + 1.0) * (std::numbers::pi / 4.0);
    const auto side = [](double share) {
        return static_cast<float>(std::max(share * std::numbers::sqrt2, 0.0));
    };
    if (place == -1.0) return {side(1.0), 0.0F};
    if (place == 1.0) return {0.0F, side(1.0)};
    return {side(std::cos(angle)), side(std::sin(angle))};
}

float amplitude(double decibels) noexcept {
    if (!(decibels > kSilentDecibels)) return 0.0F;
    return static_cast<float>(std::pow(10.0, std::min(decibels, kMostDecibels) / 20.0));
}

}  // namespace veltra::console
