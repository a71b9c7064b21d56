// SPDX-License-Identifier: MIT
#include "veltra/ui/bundle_image.h"

#include "veltra/platform/resources.h"
#include "veltra/ui/image_registry.h"

namespace veltra {

std::shared_ptr<const Image> qk_loadQKoreBundleImage(const std::string& name, float scale) {
    if (name.empty()) return nullptr;
    for (const std::string& wanted : {name + "_pro", name}) {
        if (auto image = findImage(wanted, scale)) return image;
        for (const char* extension : {"tiff", "png"}) {
            const std::string path = pathOfResource(wanted, extension);
            if (path.empty()) continue;
            if (auto image = Image::load(path)) return image;
        }
    }
    return nullptr;
}

}  // namespace veltra
