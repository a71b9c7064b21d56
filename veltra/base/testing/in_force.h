// SPDX-License-Identifier: MIT
// The base of a fake that is in force as long as it lives.
#pragma once

namespace veltra::testing {

template <typename Interface>
class InForce : public Interface {
public:
    InForce() noexcept : m_before(Interface::install(this)) {}
    ~InForce() override { Interface::install(m_before); }

private:
    decltype(Interface::install(nullptr)) const m_before;
};

}  // namespace veltra::testing
