// SPDX-License-Identifier: MIT
// A rhythm: up to 32 steps, each on or off.
#pragma once

#include <algorithm>
#include <bitset>

class StepPattern {
public:
    static constexpr int kMostSteps = 32;

    explicit StepPattern(int count = 16) : m_count(std::clamp(count, 1, kMostSteps)) {}

    int count() const { return m_count; }
    bool isOn(int step) const { return isStep(step) && m_steps[index(step)]; }

    // Returns whether that has changed anything.
    bool set(int step, bool isOn) {
        if (!isStep(step) || m_steps[index(step)] == isOn) return false;
        m_steps[index(step)] = isOn;
        return true;
    }

private:
    static std::size_t index(int step) { return static_cast<std::size_t>(step); }
    bool isStep(int step) const { return step >= 0 && step < m_count; }

    int m_count;
    std::bitset<kMostSteps> m_steps;
};
