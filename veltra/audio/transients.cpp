// SPDX-License-Identifier: MIT
#include "veltra/audio/transients.h"

#include "veltra/audio/detail/transient_sort.h"
#include "veltra/base/number_text.h"
#include "veltra/diagnostics/trace_stream.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

namespace veltra {

namespace {

enum class Detail { Full, Brief };

void write(std::ostream& stream, const CTransient& transient, Detail detail) {
    stream << "CTransient: pos " << std::int64_t{transient.pos} << ", Energy " << transient.Energy;
    if (detail == Detail::Full) stream << ", visibleweight " << transient.visibleweight;
    stream << ", FreqHz " << transient.FreqHz;
}

void write(std::ostream& stream, const CTransients& transients, Detail detail) {
    stream << "CTransients: size  " << transients.size();
    if (detail == Detail::Brief) return;
    for (const CTransient& transient : transients) {
        stream << '\n';
        write(stream, transient, Detail::Full);
    }
}

template <typename Traced>
void trace(const Traced& traced, Detail detail) {
    write(std::cout, traced, detail);
    const void* const address = std::cout.fail() ? nullptr : &std::cout;
    std::cout << address;
}

template <typename Traced>
std::string textOf(const Traced& traced) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    write(text, traced, Detail::Full);
    return text.str();
}

void keepFirst(CTransients& transients, std::size_t count) noexcept {
    transients.erase(transients.begin() + static_cast<std::ptrdiff_t>(count), transients.end());
}

// Literals that give the very same value back.
std::string literal(std::int64_t value) {
    if (value == std::numeric_limits<std::int64_t>::min())
        return std::to_string(value + 1) + " - 1";
    return std::to_string(value);
}

std::string literal(std::uint32_t value) {
    return std::to_string(value) + "U";
}

std::string literal(float value) {
    if (!std::isfinite(value)) {
        const std::string bits = std::to_string(std::bit_cast<std::uint32_t>(value));
        return "std::bit_cast<float>(" + bits + "U)";
    }
    std::string text(NumberText::shortest(value).view());
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text + "F";
}

}  // namespace

std::string CTransient::TraceStr() const {
    return textOf(*this);
}

void CTransient::Trace() const {
    trace(*this, Detail::Full);
}

void CTransient::TraceBrief() const {
    trace(*this, Detail::Brief);
}

std::ostream& operator<<(std::ostream& stream, const CTransient& transient) {
    write(stream, transient, Detail::Full);
    return stream;
}

bool CTransients::AreSortedByPos() const noexcept {
    return detail::isSortedByPos(*this);
}

bool CTransients::AreUniqueAndSortedByPos() const noexcept {
    return detail::isUniqueAndSortedByPos(*this);
}

void CTransients::SortByPos() noexcept {
    detail::sortByPos(*this);
}

void CTransients::SortByEnergyAndPos() noexcept {
    detail::sortByEnergyAndPos(*this);
}

void CTransients::SortAndMakeUniquePos() noexcept {
    keepFirst(*this, detail::sortAndMakeUniquePos(*this));
}

void CTransients::ThinOutToSizeAndSortByPos(unsigned long size) noexcept {
    keepFirst(*this, detail::thinOutAndSortByPos(*this, size));
}

std::string CTransients::TraceStr() const {
    return textOf(*this);
}

std::string CTransients::TraceAsPushBackList() const {
    std::string text;
    for (const CTransient& transient : *this) {
        text += "transients.push_back({" + literal(std::int64_t{transient.pos});
        text += ", " + literal(transient.Energy) + ", " + literal(transient.reserved3);
        text += ", " + literal(transient.visibleweight) + ", {";
        const char* separator = "";
        for (const std::uint32_t word : transient.reserved5to7) {
            text += separator + literal(word);
            separator = ", ";
        }
        text += "}, " + literal(transient.FreqHz) + "});\n";
    }
    return text;
}

void CTransients::Trace() const {
    trace(*this, Detail::Full);
}

void CTransients::TraceBrief() const {
    trace(*this, Detail::Brief);
}

std::ostream& operator<<(std::ostream& stream, const CTransients& transients) {
    write(stream, transients, Detail::Full);
    return stream;
}

template <>
std::ostream& TraceOutContainer(std::ostream& stream, const CTransients& transients,
                                const char* name, int) {
    const std::size_t most = std::numeric_limits<int>::max();
    TraceOutContainerBegin(stream, name, static_cast<int>(std::min(transients.size(), most)), "",
                           2);
    for (const CTransient& transient : transients) {
        IndentToCout();
        write(stream, transient, Detail::Full);
        TraceOutContainerEndl(stream);
    }
    TraceOutContainerEnd(stream);
    return stream;
}

void SwapTransientCallback(void* /*record*/, std::ptrdiff_t /*offset*/) noexcept {}

}  // namespace veltra
