// SPDX-License-Identifier: MIT
#include "veltra/processor/dot_api.h"

#include "veltra/platform/processor_features.h"

namespace veltra {

namespace {

constexpr int kVariants = CDotAPI::kVariants;
using EnableTable = std::uint32_t[kVariants][kVariants];

alignas(64) constexpr EnableTable s_afEnableRelease = {
    {1, 0, 0, 0, 0, 1, 0},  // SSE
    {0, 1, 0, 0, 0, 1, 0},  // SSE3
    {0, 0, 1, 0, 0, 1, 0},  // SSEAlt
    {0, 0, 0, 1, 0, 1, 0},  // AltiVecG4
    {0, 0, 0, 0, 1, 1, 0},  // AltiVecG5
    {0, 0, 0, 0, 0, 1, 0},  // Off
    {0, 0, 0, 0, 0, 1, 1},  // Debug
};

// The cross-offers are deliberate: a developer runs the other variants of the same family, and the
// G5 variant in an emulator that shows no vector unit.
alignas(64) constexpr EnableTable s_afEnableDebug = {
    {1, 0, 0, 0, 0, 1, 1},  // SSE
    {1, 1, 0, 0, 0, 1, 1},  // SSE3
    {0, 0, 1, 0, 0, 1, 1},  // SSEAlt
    {0, 0, 0, 1, 1, 1, 1},  // AltiVecG4
    {0, 0, 0, 1, 1, 1, 1},  // AltiVecG5
    {0, 0, 0, 0, 1, 1, 1},  // Off
    {0, 0, 0, 0, 1, 1, 1},  // Debug
};

// Each variant's menu offers the variant itself, and to switch optimizations off.
consteval bool offersItself(const EnableTable& table) noexcept {
    for (int variant = 0; variant < kVariants; ++variant) {
        if (table[variant][variant] == 0 || table[variant][CDotAPI::eID_Off] == 0) return false;
    }
    return true;
}
static_assert(offersItself(s_afEnableRelease) && offersItself(s_afEnableDebug));

struct Variant {
    CDotAPI::EID id;
    const char* menuText;
    int interleave;
    int maxInterleave;
};

constexpr Variant kVariantTable[] = {
    {CDotAPI::eID_SSE, "SSE optimizations", 4, 4},
    {CDotAPI::eID_SSE3, "SSE3 optimizations", 4, 4},
    {CDotAPI::eID_SSEAlt, "SSE optimizations", 4, 4},
    {CDotAPI::eID_AltiVecG4, "AltiVec G4 optimizations", 4, 4},
    {CDotAPI::eID_AltiVecG5, "AltiVec G5 optimizations", 4, 4},
    {CDotAPI::eID_Off, "optimizations off", 1, 4},
    {CDotAPI::eID_Debug, "debug mode", 4, 1},
};

consteval bool isInOrder() noexcept {
    int index = 0;
    for (const Variant& variant : kVariantTable) {
        if (variant.id != index++) return false;
    }
    return index == kVariants;
}
static_assert(isInOrder());

// 0x0039 is the first G5; the versions from 0x8000 on are those of the later G4s.
bool isG5Class(const ProcessorFeatures& features) noexcept {
    if (!features.processorVersion) return true;
    return *features.processorVersion >= 0x0039 && *features.processorVersion < 0x8000;
}

CDotAPI::EID detected() noexcept {
    const ProcessorFeatures features = ProcessorFeatures::current();
    if (features.family == ProcessorFeatures::Family::PowerPc && features.altivec) {
        return isG5Class(features) ? CDotAPI::eID_AltiVecG5 : CDotAPI::eID_AltiVecG4;
    }
    if (features.family == ProcessorFeatures::Family::X86) {
        if (features.sse3) return CDotAPI::eID_SSE3;
        if (features.sse) return CDotAPI::eID_SSE;
    }
    return CDotAPI::eID_Off;
}

}  // namespace

// Relaxed but for s_fInit: single words, whose writers the host keeps apart. s_fInit is stored last
// with release and read first with acquire, so that whoever sees it set sees what was detected.
constexpr auto kRelaxed = std::memory_order_relaxed;

constinit CDotAPI::Flag CDotAPI::s_afEnable[kVariants][kVariants]{};
constinit CDotAPI::Flag CDotAPI::s_fDbgMode{0};
constinit CDotAPI::Flag CDotAPI::s_fInit{0};
constinit std::atomic<CDotAPI::EID> CDotAPI::s_eID{eID_Off};
constinit std::atomic<CDotAPI::EID> CDotAPI::s_eOverride{eID_Off};
constinit CDotAPI::Flag CDotAPI::s_fOverride{0};
constinit CDotAPI::Flag CDotAPI::s_bEnableHistoryUpdate{1};

void CDotAPI::SetDebugMode(bool debug) noexcept {
    s_fDbgMode.store(debug ? 1 : 0, kRelaxed);
    enable(debug);
}

void CDotAPI::Init() noexcept {
    enable(s_fDbgMode.load(kRelaxed) != 0);
    s_eID.store(detected(), kRelaxed);
    s_fInit.store(1, std::memory_order_release);  // with requireInit()
}

CDotAPI::EID CDotAPI::ProcessorID() noexcept {
    requireInit();
    return s_eID.load(kRelaxed);
}

CDotAPI::EID CDotAPI::ID() noexcept {
    requireInit();
    return s_fOverride.load(kRelaxed) != 0 ? s_eOverride.load(kRelaxed) : s_eID.load(kRelaxed);
}

unsigned CDotAPI::MenuEntries() noexcept {
    requireInit();
    unsigned count = 0;
    for (const Flag& flag : s_afEnable[s_eID.load(kRelaxed)]) {
        if (flag.load(kRelaxed) != 0) ++count;
    }
    return count;
}

const char* CDotAPI::MenuText(int position) noexcept {
    const int column = columnAt(position);
    return column >= 0 ? kVariantTable[column].menuText : nullptr;
}

int CDotAPI::MenuID(int position) noexcept {
    const int column = columnAt(position);
    if (position == -1) return -1;
    return column >= 0 ? column : 0;
}

int CDotAPI::GetSelection() noexcept {
    const EID wanted = ID();
    for (int position = 0; position < kVariants; ++position) {
        if (MenuID(position) == wanted) return position;
    }
    return 0;
}

void CDotAPI::SetSelection(int position) noexcept {
    requireInit();
    if (position >= 0) Override(static_cast<EID>(MenuID(position)));
}

CDotAPI::EID CDotAPI::Override(EID variant) noexcept {
    requireInit();
    const EID own = s_eID.load(kRelaxed);
    s_eOverride.store(variant, kRelaxed);
    s_fOverride.store(isEnabled(variant) && variant != own ? 1 : 0, kRelaxed);
    return own;
}

int CDotAPI::Interleave() noexcept {
    const EID variant = ID();
    return variant >= 0 && variant < kVariants ? kVariantTable[variant].interleave : 1;
}

int CDotAPI::MaxInterleave() noexcept {
    return kVariantTable[ProcessorID()].maxInterleave;
}

bool CDotAPI::UpdateHistory() noexcept {
    return s_bEnableHistoryUpdate.load(kRelaxed) != 0;
}

void CDotAPI::EnableHistoryUpdate() noexcept {
    s_bEnableHistoryUpdate.store(1, kRelaxed);
}

void CDotAPI::DisableHistoryUpdate() noexcept {
    s_bEnableHistoryUpdate.store(0, kRelaxed);
}

void CDotAPI::requireInit() noexcept {
    if (s_fInit.load(std::memory_order_acquire) == 0) Init();  // with Init()
}

void CDotAPI::enable(bool debug) noexcept {
    const EnableTable& table = debug ? s_afEnableDebug : s_afEnableRelease;
    for (int row = 0; row < kVariants; ++row) {
        for (int column = 0; column < kVariants; ++column) {
            s_afEnable[row][column].store(table[row][column], kRelaxed);
        }
    }
}

bool CDotAPI::isEnabled(EID variant) noexcept {
    return variant >= 0 && variant < kVariants &&
           s_afEnable[s_eID.load(kRelaxed)][variant].load(kRelaxed) != 0;
}

// The column at a position of the menu, -1 outside the menu.
int CDotAPI::columnAt(int position) noexcept {
    requireInit();
    for (int column = 0; position >= 0 && column < kVariants; ++column) {
        if (isEnabled(static_cast<EID>(column)) && position-- == 0) return column;
    }
    return -1;
}

}  // namespace veltra
