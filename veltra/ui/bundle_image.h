// SPDX-License-Identifier: MIT
// The framework's own images, found by name. It stands here because only this room knows images;
// the files are looked up by veltra/platform/resources.h.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/image.h"

#include <memory>
#include <string>

namespace veltra {

// The image "NAME_pro" if there is one, else "NAME"; null when there is neither. Each of the two is
// looked for first among the images with names (image_registry.h), which a host may replace; then
// among the resource files, as NAME.tiff, then NAME.png. A file that the toolkit cannot read counts
// as none. `scale` is how many pixels a point is wanted; files have one.
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT std::shared_ptr<const Image> qk_loadQKoreBundleImage(const std::string& name,
                                                                   float scale = 1.0F);

}  // namespace veltra
