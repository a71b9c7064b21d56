// SPDX-License-Identifier: MIT
// Transients, the onsets that a detector found in a signal, and lists of them: checked, sorted,
// freed of duplicates, thinned out, and traced. For C: transients_c.h.
//
// The sorts are stable (equal transients keep the order they have) and give the same result on
// every host. No list takes longer than its size times the logarithm of its size. Lists that are
// sorted, reversed, or sorted but for few transients take time in proportion to their size.
// Sorting more than 20 transients takes work space of about the list's own size while it lasts:
// 144 MB for 4 million. When there is no memory for it, it sorts in place, to the same result but
// slower, so that no member but the ones that return text ever runs out of memory.
//
// Thread: any, one thread at a time for each list. Realtime-safe: no, but the order checks.
#pragma once

#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

namespace veltra {

// 36 bytes on every host, as in the files of hosts. An address or reference of `pos` may be
// aligned to 4 bytes only: copy the value.
#pragma pack(push, 4)
struct VELTRA_EXPORT CTransient {
    std::int64_t pos = 0;                // where in the signal; any value
    float Energy = 1.0F;                 // strength
    std::uint32_t reserved3 = 0;         // the host's own; only stored
    float visibleweight = 1.0F;          // weight for display
    std::uint32_t reserved5to7[3] = {};  // the host's own; only stored
    float FreqHz = 0.0F;                 // frequency in hertz

    // "CTransient: pos 7, Energy 1, visibleweight 1, FreqHz 440", the same in every locale.
    // Throws std::bad_alloc.
    std::string TraceStr() const;

    // Write the text, TraceBrief without visibleweight, to std::cout as operator<< does, and after
    // it the address of std::cout; no line end. Deliberate: readers of traces take the address for
    // the end of a record.
    void Trace() const;
    void TraceBrief() const;
};
#pragma pack(pop)

static_assert(sizeof(CTransient) == 36 && std::is_trivially_copyable_v<CTransient>);

// Writes the text of TraceStr, with numbers in the stream's own format: its locale, its base, its
// precision. A width that is set pads the first word.
VELTRA_EXPORT std::ostream& operator<<(std::ostream& stream, const CTransient& transient);

class VELTRA_EXPORT CTransients : public std::vector<CTransient> {
public:
    using std::vector<CTransient>::vector;

    // Whether each position is at most the next, or less than the next. Empty lists and lists of
    // one are both.
    // Realtime-safe: yes.
    bool AreSortedByPos() const noexcept;
    bool AreUniqueAndSortedByPos() const noexcept;

    // By position, the lowest first; those at one position keep their order.
    void SortByPos() noexcept;

    // The weakest first; of equal energies the lowest position first. Energies that are NaN come
    // last, equal to each other.
    void SortByEnergyAndPos() noexcept;

    // Sorts by position and keeps the first transient at each.
    void SortAndMakeUniquePos() noexcept;

    // When there are more than `size` transients, keeps the first `size` of the order by energy and
    // position. Then sorts by position. Deliberate: it is the weakest that are kept.
    void ThinOutToSizeAndSortByPos(unsigned long size) noexcept;

    // "CTransients: size  2" and a line for each transient, the same in every locale. Throws
    // std::bad_alloc.
    std::string TraceStr() const;

    // The list as C++ statements, a line each, that append its transients to a CTransients of the
    // name `transients`, exact to the last bit. They need <bit> where a value is infinite or NaN.
    // Throws std::bad_alloc.
    std::string TraceAsPushBackList() const;

    // Write to std::cout as those of CTransient do; TraceBrief only the size.
    void Trace() const;
    void TraceBrief() const;
};

// Writes the text of TraceStr, with numbers in the stream's own format, as above.
VELTRA_EXPORT std::ostream& operator<<(std::ostream& stream, const CTransients& transients);

// Writes a container as a block of trace output. Only the kinds below are defined.
template <typename Container>
std::ostream& TraceOutContainer(std::ostream& stream, const Container& container, const char* name,
                                int indent);

// Writes the texts of all transients, each after IndentToCout, between the calls of trace_stream.h
// that begin and end a container. Those write nothing, so there are no line ends. `indent` is
// deliberately not used: blocks of transients are always indented by 2.
template <>
VELTRA_EXPORT std::ostream& TraceOutContainer(std::ostream& stream, const CTransients& transients,
                                              const char* name, int indent);

// Does nothing: the place of a callback that swaps the transient at `offset` of a file whose list
// begins at byte 1024. Deliberate: readers register it and swap the list as a whole.
extern "C" VELTRA_EXPORT void SwapTransientCallback(void* data, std::ptrdiff_t offset) noexcept;

}  // namespace veltra
