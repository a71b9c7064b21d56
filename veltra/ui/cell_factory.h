// SPDX-License-Identifier: MIT
// Which class of cell a control makes: a small value that stands for the class.
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/ui/cell.h"

#include <memory>

namespace veltra {

class CellFactory {
public:
    // Makes nothing.
    constexpr CellFactory() noexcept = default;

    std::unique_ptr<Cell> make() const { return m_make != nullptr ? m_make() : nullptr; }
    constexpr explicit operator bool() const noexcept { return m_make != nullptr; }

    template <typename C>
    friend constexpr CellFactory cellFactory() noexcept;

private:
    std::unique_ptr<Cell> (*m_make)() = nullptr;
};

// The factory of cells of class C, made without arguments.
template <typename C>
constexpr CellFactory cellFactory() noexcept {
    CellFactory factory;
    factory.m_make = []() -> std::unique_ptr<Cell> { return std::make_unique<C>(); };
    return factory;
}

}  // namespace veltra
