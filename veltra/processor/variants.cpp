// SPDX-License-Identifier: MIT
#include "veltra/processor/variants.h"

#include "veltra/processor/dot_api.h"
#include "veltra/processor/kernels.h"

namespace veltra {

static_assert(int{kVLDotAPISSE} == CDotAPI::eID_SSE && int{kVLDotAPISSE3} == CDotAPI::eID_SSE3 &&
              int{kVLDotAPISSEAlt} == CDotAPI::eID_SSEAlt &&
              int{kVLDotAPIAltiVecG4} == CDotAPI::eID_AltiVecG4 &&
              int{kVLDotAPIAltiVecG5} == CDotAPI::eID_AltiVecG5 &&
              int{kVLDotAPIOff} == CDotAPI::eID_Off && int{kVLDotAPIDebug} == CDotAPI::eID_Debug);

namespace {

KernelFamily* familyOf(const char* name) noexcept {
    return name != nullptr ? KernelFamily::find(name) : nullptr;
}

}  // namespace

uint32_t VLKernelFamilyCount() noexcept {
    return static_cast<uint32_t>(KernelFamily::all().size());
}

const char* VLKernelFamilyName(uint32_t index) noexcept {
    const auto families = KernelFamily::all();
    return index < families.size() ? families[index]->name() : nullptr;
}

uint32_t VLKernelVariantCount(const char* family) noexcept {
    const KernelFamily* const found = familyOf(family);
    return found != nullptr ? static_cast<uint32_t>(found->variantCount()) : 0;
}

const char* VLKernelVariantName(const char* family, uint32_t index) noexcept {
    const KernelFamily* const found = familyOf(family);
    return found != nullptr ? found->variantName(index) : nullptr;
}

bool VLKernelVariantRuns(const char* family, uint32_t index) noexcept {
    const KernelFamily* const found = familyOf(family);
    return found != nullptr && found->runs(index);
}

const char* VLKernelFamilyInForce(const char* family) noexcept {
    const KernelFamily* const found = familyOf(family);
    return found != nullptr ? found->inForce() : nullptr;
}

bool VLKernelFamilyUse(const char* family, const char* variant) noexcept {
    KernelFamily* const found = familyOf(family);
    if (found == nullptr) return false;
    if (variant != nullptr) return found->use(variant);
    found->useBest();
    return true;
}

size_t VLKernelsInForce(char* text, size_t capacity) noexcept {
    return KernelFamily::writeInForce(text, capacity);
}

bool VLKernelsPrepare() noexcept {
    return KernelFamily::prepareAll();
}

void VLDotAPISetDebugMode(bool debug) noexcept {
    CDotAPI::SetDebugMode(debug);
}

void VLDotAPIInit() noexcept {
    CDotAPI::Init();
}

int32_t VLDotAPIProcessorID() noexcept {
    return CDotAPI::ProcessorID();
}

int32_t VLDotAPIID() noexcept {
    return CDotAPI::ID();
}

uint32_t VLDotAPIMenuEntries() noexcept {
    return CDotAPI::MenuEntries();
}

const char* VLDotAPIMenuText(int32_t position) noexcept {
    return CDotAPI::MenuText(position);
}

int32_t VLDotAPIMenuID(int32_t position) noexcept {
    return CDotAPI::MenuID(position);
}

int32_t VLDotAPIGetSelection() noexcept {
    return CDotAPI::GetSelection();
}

void VLDotAPISetSelection(int32_t position) noexcept {
    CDotAPI::SetSelection(position);
}

int32_t VLDotAPIOverride(int32_t variant) noexcept {
    return CDotAPI::Override(static_cast<CDotAPI::EID>(variant));
}

int32_t VLDotAPIInterleave() noexcept {
    return CDotAPI::Interleave();
}

int32_t VLDotAPIMaxInterleave() noexcept {
    return CDotAPI::MaxInterleave();
}

}  // namespace veltra
