// SPDX-License-Identifier: MIT
#include "veltra/platform/color_transform.h"

#include "veltra/base/object_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#define CMS_NO_REGISTER_KEYWORD 1  // a keyword that C++17 has dropped
#include <lcms2.h>
#include <lcms2_plugin.h>

namespace veltra {

namespace {

// Little CMS crashes, or loses blocks, when memory is out in the middle of its work. So it gets
// memory that was taken before: a transform with its profiles is built in an arena, which is freed
// when the transform is gone. What does not fit comes from the heap; only a profile with large
// tables needs that.
class Arena {
public:
    static constexpr std::size_t kLargestBlock = 536'870'912;  // bytes; as in Little CMS itself

    // Null when memory is out.
    static std::unique_ptr<Arena> make(std::size_t size) noexcept {
        std::unique_ptr<Arena> made(new (std::nothrow) Arena);
        if (made == nullptr) return made;
        made->m_begin = static_cast<std::byte*>(std::malloc(size));
        made->m_size = size;
        if (made->m_begin == nullptr) made.reset();
        return made;
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() { std::free(m_begin); }

    // The blocks that this thread takes come from the arena for as long as the scope lives.
    class Scope {
    public:
        explicit Scope(Arena& arena) noexcept { s_current = &arena; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { s_current = nullptr; }
    };

    static void* allocate(cmsContext /*context*/, cmsUInt32Number size) noexcept {
        if (size > kLargestBlock) return nullptr;
        const std::size_t whole = (std::size_t{size} + kHeader + kHeader - 1) / kHeader * kHeader;
        Arena* const arena = s_current;
        const bool fits = arena != nullptr && whole <= arena->m_size - arena->m_used;
        void* const memory = fits ? arena->m_begin + arena->m_used : std::malloc(whole);
        if (memory == nullptr) return nullptr;
        if (fits) arena->m_used += whole;
        new (memory) Header{size, !fits};
        return static_cast<std::byte*>(memory) + kHeader;
    }

    static void release(cmsContext /*context*/, void* block) noexcept {
        if (block != nullptr && headerOf(block)->isFromHeap) std::free(headerOf(block));
    }

    static void* resize(cmsContext context, void* block, cmsUInt32Number size) noexcept {
        void* const moved = allocate(context, size);
        if (moved == nullptr || block == nullptr) return moved;
        std::memcpy(moved, block, std::min(size, headerOf(block)->size));
        release(context, block);
        return moved;
    }

private:
    static constexpr std::size_t kHeader = alignof(std::max_align_t);

    struct Header {
        cmsUInt32Number size;
        bool isFromHeap;
    };
    static_assert(sizeof(Header) <= kHeader);

    Arena() noexcept = default;
    static Header* headerOf(void* block) noexcept {
        void* const before = static_cast<std::byte*>(block) - kHeader;
        return static_cast<Header*>(before);
    }

    VELTRA_NEVER_ALLOCATED static constinit thread_local Arena* s_current;

    std::byte* m_begin = nullptr;
    std::size_t m_size = 0;
    std::size_t m_used = 0;
};

constinit thread_local Arena* Arena::s_current = nullptr;

cmsPluginMemHandler memoryHandler() noexcept {
    cmsPluginMemHandler handler{};
    handler.base = {cmsPluginMagicNumber, 2060, cmsPluginMemHandlerSig, nullptr};
    handler.MallocPtr = Arena::allocate;
    handler.FreePtr = Arena::release;
    handler.ReallocPtr = Arena::resize;
    return handler;
}

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
    LcmsTransform(std::unique_ptr<Arena> arena, Context context, Transform transform,
                  std::size_t count) noexcept
        : m_arena(std::move(arena)),
          m_context(std::move(context)),
          m_transform(std::move(transform)),
          m_count(count) {}

    std::size_t componentCount() const noexcept override { return m_count; }

    void toSrgb(const float* components, float* rgb) const noexcept override {
        cmsDoTransform(m_transform.get(), components, rgb, 1);
    }

private:
    const std::unique_ptr<Arena> m_arena;
    const Context m_context;
    const Transform m_transform;
    const std::size_t m_count;
};

constexpr std::size_t kArenaSize = 524'288;  // nearly twice what a profile without tables needs

// A big-endian word of a profile's header.
std::uint32_t wordAt(std::span<const std::byte> file, std::size_t place) noexcept {
    std::uint32_t word = 0;
    for (const std::byte byte : file.subspan(place, sizeof word))
        word = word << 8U | std::to_integer<std::uint32_t>(byte);
    return word;
}

// Little CMS makes do with a file that was cut short, as long as it finds what it looks for.
bool isWhole(std::span<const std::byte> file) noexcept {
    constexpr std::size_t kHeader = 128;
    return file.size() >= kHeader && wordAt(file, 0) == file.size();
}

}  // namespace

std::unique_ptr<const ColorTransform> makeColorTransform(
    std::span<const std::byte> profile) noexcept {
    if (!isWhole(profile)) return nullptr;
    std::unique_ptr<Arena> arena = Arena::make(kArenaSize + 2 * profile.size());
    if (arena == nullptr) return nullptr;
    const Arena::Scope inArena(*arena);
    cmsPluginMemHandler handler = memoryHandler();
    Context context(cmsCreateContext(&handler, nullptr));
    if (context == nullptr) return nullptr;
    const Profile from(cmsOpenProfileFromMemTHR(context.get(), profile.data(),
                                                static_cast<cmsUInt32Number>(profile.size())));
    const Profile srgb(cmsCreate_sRGBProfileTHR(context.get()));
    if (from == nullptr || srgb == nullptr) return nullptr;
    // Read here: Little CMS answers an enumerator, also where the file has no number of one.
    const std::uint32_t space = wordAt(profile, 16);
    const bool isRgb = space == cmsSigRgbData;
    if (!isRgb && space != cmsSigGrayData) return nullptr;
    // Without a cache, one transform serves several threads at once.
    Transform transform(cmsCreateTransformTHR(context.get(), from.get(),
                                              isRgb ? TYPE_RGB_FLT : TYPE_GRAY_FLT, srgb.get(),
                                              TYPE_RGB_FLT, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    if (transform == nullptr) return nullptr;
    return std::unique_ptr<const ColorTransform>(new (std::nothrow) LcmsTransform(
        std::move(arena), std::move(context), std::move(transform), isRgb ? 3 : 1));
}

}  // namespace veltra
