// SPDX-License-Identifier: MIT
// Which variant of the host's own signal-processing code ("optimizations") runs, and the menu in
// which a user, or a developer in debug mode, may choose another.
//
//     CDotAPI::SetDebugMode(false);
//     for (unsigned p = 0; p < CDotAPI::MenuEntries(); ++p) addItem(CDotAPI::MenuText(int(p)));
//     CDotAPI::SetSelection(1);
//     switch (CDotAPI::ID()) { ... }
//
// Signal processing that knows more than these variants asks ProcessorFeatures::current(). The
// framework's own kernels choose for themselves (kernels.h). For C, see variants.h.
#pragma once

#include "veltra/export.h"

#include <atomic>
#include <cstdint>

namespace veltra {

// Every query first detects the processor (Init) when that has not been done.
//
// Thread: any for the queries. Call SetDebugMode, Init, SetSelection and Override from one thread
// at a time; a query on another thread may meanwhile see half of the change.
// Realtime-safe: yes, if ProcessorFeatures::current is.
class CDotAPI {
public:
    // The variants: two for x86 and one in reserve, two for PowerPC, the plain one, and that for
    // debugging.
    enum EID : std::int32_t {
        eID_SSE = 0,
        eID_SSE3 = 1,
        eID_SSEAlt = 2,
        eID_AltiVecG4 = 3,
        eID_AltiVecG5 = 4,
        eID_Off = 5,
        eID_Debug = 6
    };

    // How many there are; EIDs count from 0.
    static constexpr int kVariants = 7;

    CDotAPI() = delete;

    // Chooses which variants the menu offers from now on. Call it before anything else. It does not
    // detect the processor, and an override stays in force.
    VELTRA_EXPORT static void SetDebugMode(bool debug) noexcept;

    // Detects the processor (ProcessorFeatures::current) and takes the menu of the mode. May be
    // called again; an override stays.
    //
    //   PowerPC  AltiVec: eID_AltiVecG5 when the processor's version is unknown or that of a G5 or
    //            later, else eID_AltiVecG4
    //   x86      eID_SSE3 or eID_SSE; eID_SSEAlt is never detected
    //   else     eID_Off
    VELTRA_EXPORT static void Init() noexcept;

    // The detected variant, and the variant in force: the override's, else the detected one.
    VELTRA_EXPORT static EID ProcessorID() noexcept;
    VELTRA_EXPORT static EID ID() noexcept;

    // The menu: what the mode offers to the detected processor. Positions count from 0.
    VELTRA_EXPORT static unsigned MenuEntries() noexcept;

    // The text at a position, a constant; null for every position outside the menu. Two
    // variants deliberately share "SSE optimizations".
    VELTRA_EXPORT static const char* MenuText(int position) noexcept;

    // The EID at a position; deliberately 0 for a position outside the menu, but -1 for -1.
    VELTRA_EXPORT static int MenuID(int position) noexcept;

    // The first position from 0 to 6 whose MenuID is the variant in force, 0 when none is.
    VELTRA_EXPORT static int GetSelection() noexcept;

    // Override(MenuID(position)); nothing for a negative position. The detected variant's position,
    // or one past the end of the menu, thus ends an override, unless the menu has variant 0.
    VELTRA_EXPORT static void SetSelection(int position) noexcept;

    // Asks for a variant. It is in force from here on when the menu offers it and it is not the
    // detected one; any other value ends an override. Returns the detected variant.
    VELTRA_EXPORT static EID Override(EID variant) noexcept;

    // The interleave factor of the variant in force, and the largest of the detected one. They
    // deliberately disagree on the last two variants: off works with 1 though it might with 4,
    // debug with 4 though its largest is 1.
    VELTRA_EXPORT static int Interleave() noexcept;
    VELTRA_EXPORT static int MaxInterleave() noexcept;

    // A flag kept for the host; true at the start.
    VELTRA_EXPORT static bool UpdateHistory() noexcept;
    VELTRA_EXPORT static void EnableHistoryUpdate() noexcept;
    VELTRA_EXPORT static void DisableHistoryUpdate() noexcept;

private:
    using Flag = std::atomic<std::uint32_t>;

    static void requireInit() noexcept;
    static void enable(bool debug) noexcept;
    static bool isEnabled(EID variant) noexcept;
    static int columnAt(int position) noexcept;

    static Flag s_afEnable[kVariants][kVariants];  // row: detected variant; column: offered
    static Flag s_fDbgMode;
    static Flag s_fInit;
    static std::atomic<EID> s_eID;
    static std::atomic<EID> s_eOverride;  // kept also when not in force
    static Flag s_fOverride;
    static Flag s_bEnableHistoryUpdate;
};

}  // namespace veltra
