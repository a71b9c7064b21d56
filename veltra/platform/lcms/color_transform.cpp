// SPDX-License-Identifier: MIT
#include "veltra/platform/color_transform.h"

#include <cstdint>
#include <new>
#include <utility>

#define CMS_NO_REGISTER_KEYWORD 1  // a keyword that C++17 has dropped
#include <lcms2.h>

namespace veltra {

namespace {

template <auto close>
struct Closer {
    template <typename T>
    void operator()(T* handle) const noexcept {
        close(handle);
    }
};

using Profile = std::unique_ptr<void, Closer<&cmsCloseProfile>>;
using Transform = std::unique_ptr<void, Closer<&cmsDeleteTransform>>;
// Each transform has a context of its own, so that errors are told to nobody, and settings that a
// host makes in the library's global one change nothing here.
using Context = std::unique_ptr<_cmsContext_struct, Closer<&cmsDeleteContext>>;

class LcmsTransform final : public ColorTransform {
public:
    LcmsTransform(Context context, Transform transform, std::size_t count) noexcept
        : m_context(std::move(context)), m_transform(std::move(transform)), m_count(count) {}

    std::size_t componentCount() const noexcept override { return m_count; }

    void toSrgb(const float* components, float* rgb) const noexcept override {
        cmsDoTransform(m_transform.get(), components, rgb, 1);
    }

private:
    const Context m_context;
    const Transform m_transform;
    const std::size_t m_count;
};

// Little CMS makes do with a file that was cut short, as long as it finds what it looks for.
bool isWhole(std::span<const std::byte> file) noexcept {
    constexpr std::size_t kHeader = 128;
    if (file.size() < kHeader || file.size() > UINT32_MAX) return false;
    std::uint32_t size = 0;  // big-endian, the first word
    for (std::size_t index = 0; index < sizeof size; ++index)
        size = size << 8U | std::to_integer<std::uint32_t>(file[index]);
    return size == file.size();
}

}  // namespace

std::unique_ptr<const ColorTransform> makeColorTransform(
    std::span<const std::byte> profile) noexcept {
    if (!isWhole(profile)) return nullptr;
    Context context(cmsCreateContext(nullptr, nullptr));
    if (context == nullptr) return nullptr;
    const Profile from(cmsOpenProfileFromMemTHR(context.get(), profile.data(),
                                                static_cast<cmsUInt32Number>(profile.size())));
    const Profile srgb(cmsCreate_sRGBProfileTHR(context.get()));
    if (from == nullptr || srgb == nullptr) return nullptr;
    const cmsColorSpaceSignature space = cmsGetColorSpace(from.get());
    if (space != cmsSigRgbData && space != cmsSigGrayData) return nullptr;
    const bool isRgb = space == cmsSigRgbData;
    // Without a cache, one transform serves several threads at once.
    Transform transform(cmsCreateTransformTHR(context.get(), from.get(),
                                              isRgb ? TYPE_RGB_FLT : TYPE_GRAY_FLT, srgb.get(),
                                              TYPE_RGB_FLT, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    if (transform == nullptr) return nullptr;
    return std::unique_ptr<const ColorTransform>(
        new (std::nothrow) LcmsTransform(std::move(context), std::move(transform), isRgb ? 3 : 1));
}

}  // namespace veltra
