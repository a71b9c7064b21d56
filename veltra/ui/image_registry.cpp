// SPDX-License-Identifier: MIT
#include "veltra/ui/image_registry.h"

#include "veltra/base/immortal.h"
#include "veltra/ui/port.h"

#include <map>
#include <utility>

namespace veltra {

namespace {

struct Variant {
    const char* suffix;
    float scale;
};

constexpr Variant kVariants[] = {{".png", 1.0F}, {"@2x.png", 2.0F}, {"@3x.png", 3.0F}};

struct Registry {
    std::map<ImageKey, ImageMaker> own;
    std::map<ImageKey, ImageMaker> defaults;
    std::string folder;

    std::map<std::pair<ImageKey, float>, std::shared_ptr<const Image>> found;
    const UiPort* port = nullptr;  // whose images were found
};

Registry& registry() {
    static Immortal<Registry> registry;
    return *registry;
}

void put(std::map<ImageKey, ImageMaker>& makers, ImageKey key, ImageMaker maker) {
    registry().found.clear();
    if (maker) {
        makers.insert_or_assign(std::move(key), std::move(maker));
    } else {
        makers.erase(key);
    }
}

std::shared_ptr<const Image> fromFile(const std::string& name, float scale) {
    const std::string& folder = registry().folder;
    if (folder.empty() || name.empty()) return nullptr;
    std::shared_ptr<const Image> best;
    for (const Variant& variant : kVariants) {
        auto image = Image::load(folder + '/' + name + variant.suffix, variant.scale);
        if (image) best = std::move(image);
        if (best && variant.scale >= scale) break;
    }
    return best;
}

std::shared_ptr<const Image> make(const std::map<ImageKey, ImageMaker>& makers, const ImageKey& key,
                                  float scale) {
    const auto found = makers.find(key);
    if (found == makers.end()) return nullptr;
    const ImageMaker maker = found->second;  // may register others
    return maker(scale);
}

}  // namespace

void registerImage(ImageKey key, ImageMaker maker) {
    put(registry().own, std::move(key), std::move(maker));
}

void registerDefaultImage(ImageKey key, ImageMaker maker) {
    put(registry().defaults, std::move(key), std::move(maker));
}

void setImageFolder(std::string path) {
    registry().folder = std::move(path);
    registry().found.clear();
}

std::shared_ptr<const Image> findImage(const ImageKey& key, float scale) {
    if (!(scale > 0.0F)) return nullptr;
    Registry& all = registry();
    if (std::exchange(all.port, &UiPort::current()) != &UiPort::current()) all.found.clear();
    const std::pair<ImageKey, float> place(key, scale);
    if (const auto found = all.found.find(place); found != all.found.end()) return found->second;

    std::shared_ptr<const Image> image = make(all.own, key, scale);
    if (const auto* name = std::get_if<std::string>(&key); !image && name != nullptr) {
        image = fromFile(*name, scale);
    }
    if (!image) image = make(all.defaults, key, scale);
    if (image) all.found.insert_or_assign(place, image);
    return image;
}

}  // namespace veltra
