// SPDX-License-Identifier: MIT
// Which class of cell a control makes: a small value that stands for the class.
//
//   CellFactory digits = cellFactory<DigitCell>();
//   std::unique_ptr<Cell> cell = digits.make("12");
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/ui/cell.h"

#include <concepts>
#include <memory>
#include <string_view>
#include <typeinfo>

namespace veltra {

class CellFactory {
public:
    // Makes nothing.
    constexpr CellFactory() noexcept = default;

    // A new cell with `text` as its value, or with the value that its class begins with.
    std::unique_ptr<Cell> make(std::string_view text = {}) const {
        return m_make != nullptr ? m_make(text) : nullptr;
    }
    constexpr explicit operator bool() const noexcept { return m_make != nullptr; }

    // The same class; two factories that make nothing are equal.
    friend bool operator==(const CellFactory& left, const CellFactory& right) noexcept {
        if (left.m_type == nullptr || right.m_type == nullptr) return left.m_type == right.m_type;
        return *left.m_type == *right.m_type;
    }

    template <typename C>
    friend constexpr CellFactory cellFactory() noexcept;

private:
    std::unique_ptr<Cell> (*m_make)(std::string_view text) = nullptr;
    const std::type_info* m_type = nullptr;
};

// The factory of cells of class C. The text goes to the constructor if it takes one, otherwise to
// setStringValue().
template <typename C>
constexpr CellFactory cellFactory() noexcept {
    CellFactory factory;
    factory.m_type = &typeid(C);
    factory.m_make = [](std::string_view text) -> std::unique_ptr<Cell> {
        if constexpr (std::constructible_from<C, std::string_view>) {
            if (!text.empty()) return std::make_unique<C>(text);
        }
        auto cell = std::make_unique<C>();
        if (!text.empty()) cell->setStringValue(text);
        return cell;
    };
    return factory;
}

}  // namespace veltra
